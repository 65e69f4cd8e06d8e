// Sums in terms of `Block`, limbs of a vector that are added and subtracted as one number: Block::limbs, load, store, add,
// subtract (with a carry or borrow of 0 or 1 in and out); and limb by limb, as OneLimb has them, what LazyRadix4 takes.

struct AddSubtractStep {
    RingWord *sum, *difference;
    const RingWord *a, *b;
    unsigned carry, borrow;

    template <class B>
    ZVP_KERNEL_INLINE void run(std::size_t w) {
        const B x = B::load(a + w), y = B::load(b + w);
        add(x, y, carry).store(sum + w);
        subtract(x, y, borrow).store(difference + w);
    }
};

/// Each result may be an operand.
void add_subtract(RingWord* sum, RingWord* difference, const RingWord* a, const RingWord* b, std::size_t limbs,
                  unsigned& carry, unsigned& borrow) {
    AddSubtractStep step{sum, difference, a, b, carry, borrow};
    for_blocks<Block>(limbs, step);
    carry = step.carry;
    borrow = step.borrow;
}

struct SubtractStep {
    RingWord* x;
    const RingWord* y;
    unsigned borrow;

    template <class B>
    ZVP_KERNEL_INLINE void run(std::size_t w) {
        subtract(B::load(x + w), B::load(y + w), borrow).store(x + w);
    }
};

/// x -= y; returns the borrow.
unsigned subtract_run(RingWord* x, const RingWord* y, std::size_t limbs) {
    SubtractStep step{x, y, 0};
    for_blocks<Block>(limbs, step);
    return step.borrow;
}

/// Limbs are summed without a look at the carries of those below. What leaves them, -2 to 3 in each, is counted, moved up
/// by one and added. That this leaves a limb again is as good as never seen in random numbers and common in others: where
/// a changed top bit tells that it may be so, the block is done once more with carries that run.
///
/// What leaves a block is -2 to 3 as well, runs included: of numbers of w bits and -2 to 3 that come in, the least sum is
/// -2 (2^w - 1) - 2 = -2 * 2^w, the largest 4 (2^w - 1) + 3 < 4 * 2^w.
template <class Vector>
class LazyRadix4 {
public:
    explicit LazyRadix4(const Radix4Operands& operands) : o(operands) {}

    void run(std::size_t count) {
        const std::size_t blocks_end = count / Vector::limbs * Vector::limbs;
        Counts<Vector> counts;
        std::size_t i = 0;
        while (i < blocks_end) i = exact_blocks(lazy_blocks(i, blocks_end, counts), blocks_end, counts);
        for (int k = 0; k < 8; ++k) last.of[k / 2][k % 2] = {top_count(counts.of[k / 2][k % 2])};
        for (; i < count; ++i) step<true>(2 * i, last);
    }

    /// What leaves half h of result i.
    Wide left(int i, int h) const { return static_cast<std::int64_t>(last.of[i][h].v); }

private:
    /// What left the limbs of the last block, of result and half.
    template <class B>
    struct Counts {
        B of[4][2];

        ZVP_KERNEL_INLINE Counts() {
            for (auto& result : of) result[0] = result[1] = B::no_count();
        }
    };

    /// A sum or difference, lifted, and the limbs that it carries or borrows from.
    template <class B>
    struct Lazy {
        B value;
        typename B::Limbs out;
    };

    /// a is lifted.
    template <class B>
    ZVP_KERNEL_INLINE static Lazy<B> sum(B a, B b) {
        const B value = plus(a, b);
        return {value, below(value, a)};
    }
    template <class B>
    ZVP_KERNEL_INLINE static Lazy<B> difference(B a, B b) {
        const B value = minus(a, b);
        return {value, below(a, value)};
    }

    /// Blocks from limb i on, up to `end` or to one that can't be done so, whose place is returned. Its own function:
    /// calls for such blocks in the loop would drive the counts out of the registers.
    __attribute__((noinline, force_align_arg_pointer)) std::size_t lazy_blocks(std::size_t i, std::size_t end,
                                                                               Counts<Vector>& counts) const {
        Counts<Vector> local = counts;
        while (i < end && step<false>(2 * i, local)) i += Vector::limbs;
        counts = local;
        return i;
    }

    /// Blocks from limb i on with carries that run, up to `end` or behind one that hadn't needed them.
    __attribute__((noinline)) std::size_t exact_blocks(std::size_t i, std::size_t end, Counts<Vector>& counts) const {
        Counts<Vector> local = counts;
        for (bool needed = true; i < end && needed; i += Vector::limbs) needed = !step<true>(2 * i, local);
        counts = local;
        return i;
    }

    /// One block. Returns false where a carry may have to run: without Exact, nothing has been done then.
    template <bool Exact, class B>
    ZVP_KERNEL_INLINE bool step(std::size_t w, Counts<B>& counts) const {
        Lazy<B> u[2], d[2], v[2], e[2];
        for (int h = 0; h < 2; ++h) {
            const std::size_t at = w + (h ? o.half : 0);
            const B p = lifted(B::load(o.in[0] + at)), q = B::load(o.in[1] + at), r = lifted(B::load(o.in[2] + at)),
                    s = B::load(o.in[3] + at);
            u[h] = sum(p, q);
            d[h] = difference(p, q);
            v[h] = sum(r, s);
            e[h] = difference(r, s);
        }
        B value[4][2], changed = B::zero();
        Counts<B> next = counts;
        auto& of = next.of;
        second<Exact, false>(u[0], v[0], value[0][0], of[0][0], value[1][0], of[1][0], changed);
        second<Exact, false>(u[1], v[1], value[0][1], of[0][1], value[1][1], of[1][1], changed);
        second<Exact, true>(d[0], e[1], value[3][0], of[3][0], value[2][0], of[2][0], changed);
        second<Exact, true>(d[1], e[0], value[2][1], of[2][1], value[3][1], of[3][1], changed);
        const bool quiet = !any_top_bit(changed);
        if constexpr (!Exact)
            if (__builtin_expect(!quiet, false)) return false;
        for (int i = 0; i < 4; ++i)
            for (int h = 0; h < 2; ++h) value[i][h].store(o.out[i] + w + (h ? o.half : 0));
        counts = next;
        return quiet;
    }

    /// a + b and a - b, which come of sums or of differences, to `plus_value` and `minus_value`, and their counts.
    template <bool Exact, bool OfDifferences, class B>
    ZVP_KERNEL_INLINE static void second(const Lazy<B>& a, const Lazy<B>& b, B& plus_value, B& plus_counts,
                                         B& minus_value, B& minus_counts, B& changed) {
        const B plain = lowered(b.value);
        const Lazy<B> s = sum(a.value, plain), d = difference(a.value, plain);
        const B none = B::no_count();
        const B of_a = OfDifferences ? less_one(none, a.out) : plus_one(none, a.out);
        const B with_b = OfDifferences ? less_one(of_a, b.out) : plus_one(of_a, b.out);
        const B without_b = OfDifferences ? plus_one(of_a, b.out) : less_one(of_a, b.out);
        plus_value = with_counts<Exact>(s.value, plus_one(with_b, s.out), plus_counts, changed);
        minus_value = with_counts<Exact>(d.value, less_one(without_b, d.out), minus_counts, changed);
    }

    /// The block, lowered, with what left the limbs below each; `counts` becomes what leaves its own, `now`.
    template <bool Exact, class B>
    ZVP_KERNEL_INLINE static B with_counts(B value, B now, B& counts, B& changed) {
        const B in = moved_up(now, counts);
        const B moved = plus(value, in);
        changed = or_changes(changed, lowered(value), moved);
        if constexpr (!Exact) return moved;
        const B two = B::broadcast(2); // no count is below -2: both terms are positive
        unsigned carry = 0, borrow = 0;
        const B more = add(lowered(value), plus(lowered(in), two), carry);
        const B exact = subtract(more, two, borrow);
        counts = add_to_top(counts, Limb{carry} - Limb{borrow});
        return exact;
    }

    Radix4Operands o;
    Counts<OneLimb> last;
};

using Radix4 = LazyRadix4<Block>;
