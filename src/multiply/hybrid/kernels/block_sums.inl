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
/// a changed top bit tells that it may be so, the carries run through what has been stored.
///
/// What leaves a block is -2 to 3 as well, runs included: of numbers of w bits and -2 to 3 that come in, the least sum is
/// -2 (2^w - 1) - 2 = -2 * 2^w, the largest 4 (2^w - 1) + 3 < 4 * 2^w.
template <class Vector>
class LazyRadix4 {
public:
    explicit LazyRadix4(const Radix4Operands& operands) : o(operands) {}

    void run(std::size_t count) {
        const std::size_t pairs_end = count / (2 * Vector::limbs) * (2 * Vector::limbs);
        run_pairs(pairs_end);
        for (int k = 0; k < 8; ++k) last[0].of[k / 2][k % 2] = {top_count(counts[0].of[k / 2][k % 2])};
        for (std::size_t i = pairs_end; i < count; ++i) {
            step(2 * i, last[0], last[1]);
            last[0] = last[1];
        }
    }

    /// What leaves half h of result i.
    Wide left(int i, int h) const { return static_cast<std::int64_t>(last[0].of[i][h].v); }

private:
    /// What left the limbs of a block, of result and half.
    template <class B>
    struct Counts {
        B of[4][2];

        ZVP_KERNEL_INLINE Counts() {
            for (auto& result : of) result[0] = result[1] = B::no_count();
        }
    };

    /// Of the vectors' blocks by turns: in registers where there are enough, else in memory from the start.
    using PlacedCounts = std::conditional_t<Vector::many_registers, Counts<Vector>, Counts<Vector>&>;

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

    /// The limbs [0, end), by two blocks. With an aligned stack: clang 14 spills to any address otherwise.
    __attribute__((noinline, force_align_arg_pointer)) void run_pairs(std::size_t end) {
        PlacedCounts even = counts[0], odd = counts[1];
        for (std::size_t i = 0; i < end; i += 2 * Vector::limbs) {
            step(2 * i, even, odd);
            step(2 * (i + Vector::limbs), odd, even);
        }
        if constexpr (Vector::many_registers) counts[0] = even;
    }

    /// One block at word w: `before` has left the one below, `now` leaves this one.
    template <class B>
    ZVP_KERNEL_INLINE void step(std::size_t w, const Counts<B>& before, Counts<B>& now) const {
        B changes = B::no_changes();
        Lazy<B> u, v, d[2], e[2];
        for (int h = 0; h < 2; ++h) {
            const std::size_t at = w + (h ? o.half : 0);
            const B p = lifted(B::load(o.in[0] + at)), q = B::load(o.in[1] + at), r = lifted(B::load(o.in[2] + at)),
                    s = B::load(o.in[3] + at);
            u = sum(p, q);
            d[h] = difference(p, q);
            v = sum(r, s);
            e[h] = difference(r, s);
            second<false>(u, v, o.out[0] + at, before.of[0][h], now.of[0][h], o.out[1] + at, before.of[1][h],
                          now.of[1][h], changes);
        }
        second<true>(d[0], e[1], o.out[3] + w, before.of[3][0], now.of[3][0], o.out[2] + w, before.of[2][0],
                     now.of[2][0], changes);
        second<true>(d[1], e[0], o.out[2] + o.half + w, before.of[2][1], now.of[2][1], o.out[3] + o.half + w,
                     before.of[3][1], now.of[3][1], changes);
        if (__builtin_expect(!any(changes), true)) return;
        if constexpr (B::many_registers) {
            // Copies: what is handed on would leave the registers.
            const Counts<B> below_it = before;
            Counts<B> its = now;
            run_carries(w, below_it, its);
            now = its;
        } else {
            run_carries(w, before, now);
        }
    }

    /// a + b and a - b, which come of sums or of differences, and their counts.
    template <bool OfDifferences, class B>
    ZVP_KERNEL_INLINE static void second(const Lazy<B>& a, const Lazy<B>& b, RingWord* plus_to, const B& plus_before,
                                         B& plus_now, RingWord* minus_to, const B& minus_before, B& minus_now,
                                         B& changes) {
        const B plain = lowered(b.value);
        const Lazy<B> s = sum(a.value, plain), d = difference(a.value, plain);
        const B none = B::no_count();
        const B of_a = OfDifferences ? less_one(none, a.out) : plus_one(none, a.out);
        const B with_b = OfDifferences ? less_one(of_a, b.out) : plus_one(of_a, b.out);
        const B without_b = OfDifferences ? plus_one(of_a, b.out) : less_one(of_a, b.out);
        put(s.value, plus_one(with_b, s.out), plus_to, plus_before, plus_now, changes);
        put(d.value, less_one(without_b, d.out), minus_to, minus_before, minus_now, changes);
    }

    /// Stores the sum with what left the limbs below each: `count` leaves its own.
    template <class B>
    ZVP_KERNEL_INLINE static void put(B value, B count, RingWord* to, const B& before, B& now, B& changes) {
        now = turned_up(count);
        const B moved = plus(value, moved_up(now, before));
        changes = with_changes(changes, value, moved);
        moved.store(to);
    }

    /// Lets the carries run that adding the counts made in the block at word w.
    template <class B>
    __attribute__((noinline)) void run_carries(std::size_t w, const Counts<B>& before, Counts<B>& now) const {
        run_carries_of<0>(w, before, now);
        run_carries_of<1>(w, before, now);
        run_carries_of<2>(w, before, now);
        run_carries_of<3>(w, before, now);
    }

    template <int I, class B>
    ZVP_KERNEL_INLINE void run_carries_of(std::size_t w, const Counts<B>& before, Counts<B>& now) const {
        run_carries_at<(I > 0)>(o.out[I] + w, before.of[I][0], now.of[I][0]);
        run_carries_at<(I > 0)>(o.out[I] + o.half + w, before.of[I][1], now.of[I][1]);
    }

    /// Of one result. Where counts can be negative, -2 to 1, each limb hands 2 to its count first: value - 2 less a borrow,
    /// as if the two numbers that are subtracted were added as complements, whose counts are 0 to 3. Without branches:
    /// which carries run is as good as random in elements of many runs.
    template <bool Signed, class B>
    ZVP_KERNEL_INLINE static void run_carries_at(RingWord* x, const B& before, B& now) {
        B in = moved_up(now, before), value = minus(B::load(x), in);
        Limb top_borrow = 0;
        in = lowered(in);
        if constexpr (Signed) {
            const B two = B::broadcast(2);
            const typename B::Limbs borrows = below(value, lifted(two));
            value = minus(value, two);
            in = less_one_above(plus(in, two), borrows);
            top_borrow = B::bits_of(borrows) >> (B::limbs - 1);
        }
        unsigned carry = 0;
        add(lowered(value), in, carry).store(x);
        now = add_to_top(now, carry - top_borrow);
    }

    Radix4Operands o;
    Counts<Vector> counts[2];
    Counts<OneLimb> last[2];
};

using Radix4 = LazyRadix4<Block>;
