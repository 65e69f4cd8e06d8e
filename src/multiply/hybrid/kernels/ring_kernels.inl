// Arithmetic modulo 2^N + 1 in terms of `Block`, a run of 64-bit limbs (`Limb`) that are added and subtracted as one number:
// Block::limbs, load, store, add, subtract (with a carry or borrow of 0 or 1 in and out), complement, shift; and limb by
// limb, modulo 2^64, plus, masked, left, right. Blocks with lazy_carries have more of the latter, as OneLimb has them
// (radix4.inl).
// What doesn't fill a block goes limb by limb.

__extension__ typedef __int128 Wide;

/// One limb, with the operations of a block.
struct OneLimb {
    static constexpr std::size_t limbs = 1;
    using Limbs = bool;

    Limb v;

    ZVP_KERNEL_INLINE static OneLimb zero() { return {0}; }
    ZVP_KERNEL_INLINE static OneLimb broadcast(Limb limb) { return {limb}; }
    ZVP_KERNEL_INLINE static OneLimb load(const RingWord* p) {
        OneLimb block;
        std::memcpy(&block.v, p, sizeof block.v);
        return block;
    }
    ZVP_KERNEL_INLINE void store(RingWord* p) const { std::memcpy(p, &v, sizeof v); }
    ZVP_KERNEL_INLINE friend OneLimb add(OneLimb a, OneLimb b, unsigned& carry) {
        Limb sum;
        const bool first = __builtin_add_overflow(a.v, b.v, &sum);
        const bool second = __builtin_add_overflow(sum, Limb{carry}, &sum);
        carry = first || second;
        return {sum};
    }
    ZVP_KERNEL_INLINE friend OneLimb subtract(OneLimb a, OneLimb b, unsigned& borrow) {
        Limb difference;
        const bool first = __builtin_sub_overflow(a.v, b.v, &difference);
        const bool second = __builtin_sub_overflow(difference, Limb{borrow}, &difference);
        borrow = first || second;
        return {difference};
    }
    ZVP_KERNEL_INLINE friend OneLimb complement(OneLimb a) { return {~a.v}; }
    /// (a << bits) + the top bits of the limbs below, 0 < bits < 64.
    ZVP_KERNEL_INLINE friend OneLimb shift(OneLimb a, OneLimb below, int bits) {
        return {a.v << bits | below.v >> (64 - bits)};
    }
    ZVP_KERNEL_INLINE friend OneLimb plus(OneLimb a, OneLimb b) { return {a.v + b.v}; }
    ZVP_KERNEL_INLINE friend OneLimb minus(OneLimb a, OneLimb b) { return {a.v - b.v}; }
    ZVP_KERNEL_INLINE friend Limbs below(OneLimb a, OneLimb b) { return a.v < b.v; }
    ZVP_KERNEL_INLINE friend OneLimb plus_one(OneLimb a, Limbs there) { return {a.v + there}; }
    ZVP_KERNEL_INLINE friend OneLimb less_one(OneLimb a, Limbs there) { return {a.v - there}; }
    ZVP_KERNEL_INLINE friend OneLimb moved_up(OneLimb, OneLimb before) { return before; }
    ZVP_KERNEL_INLINE friend OneLimb or_changes(OneLimb changes, OneLimb a, OneLimb b) {
        return {changes.v | (a.v ^ b.v)};
    }
    ZVP_KERNEL_INLINE friend bool any_top_bit(OneLimb a) { return a.v >> 63 != 0; }
    ZVP_KERNEL_INLINE friend OneLimb add_to_top(OneLimb a, Limb count) { return {a.v + count}; }
};

/// Adds the small value v at limb i of x; what leaves the limbs goes to the top word.
inline void add_at(RingWord* x, std::size_t n, std::size_t i, Wide v) {
    for (; 2 * i < n && v != 0; ++i) {
        v += OneLimb::load(x + 2 * i).v;
        OneLimb{static_cast<Limb>(v)}.store(x + 2 * i);
        v >>= 64;
    }
    x[n] += static_cast<RingWord>(v);
}

ZVP_KERNEL_INLINE Wide top_of(const RingWord* x, std::size_t n) { return static_cast<std::int32_t>(x[n]); }

/// Calls step<B>(limb) for the limbs [0, count): by blocks, then one by one.
template <class Step>
ZVP_KERNEL_INLINE void for_blocks(std::size_t count, Step& step) {
    std::size_t i = 0;
    for (; i + Block::limbs <= count; i += Block::limbs) step.template run<Block>(2 * i);
    for (; i < count; ++i) step.template run<OneLimb>(2 * i);
}

struct ButterflyStep {
    RingWord *x, *y, *z;
    unsigned carry = 0, borrow = 0;

    template <class B>
    ZVP_KERNEL_INLINE void run(std::size_t w) {
        const B a = B::load(x + w), b = B::load(y + w);
        add(a, b, carry).store(x + w);
        subtract(a, b, borrow).store(z + w);
    }
};

void butterfly(RingWord* x, RingWord* y, RingWord* z, std::size_t n) {
    ButterflyStep step{x, y, z};
    const RingWord tx = x[n], ty = y[n];
    for_blocks(n / 2, step);
    x[n] = tx + ty + step.carry;
    z[n] = tx - ty - step.borrow;
}

struct SubtractStep {
    RingWord* x;
    const RingWord* y;
    unsigned borrow = 0;

    template <class B>
    ZVP_KERNEL_INLINE void run(std::size_t w) {
        subtract(B::load(x + w), B::load(y + w), borrow).store(x + w);
    }
};

void subtract(RingWord* x, const RingWord* y, std::size_t n) {
    SubtractStep step{x, y};
    for_blocks(n / 2, step);
    x[n] -= y[n] + step.borrow;
}

ZVP_KERNEL_INLINE Wide wide(unsigned x) { return static_cast<Wide>(x); }

#include "multiply/hybrid/kernels/radix4.inl"

void forward4(RingWord* const (&x)[4], RingWord* const (&z)[3], std::size_t n) {
    radix4({{x[0], x[2], x[1], x[3]}, {x[0], z[0], z[1], z[2]}, n / 2}, n);
}

/// The results come as sums of y0, y1 and y3, y2, which are x[0], z[0] and z[2], z[1].
void inverse4(RingWord* const (&x)[4], RingWord* const (&z)[3], std::size_t n) {
    radix4({{x[0], z[0], z[2], z[1]}, {x[0], x[2], x[1], x[3]}, n / 2}, n);
}

/// Of halves: nothing but carries passes the middle, and J (x1 - x3) lies above x0 - x2.
template <bool Two>
struct Load4Step {
    const RingWord* const (&in)[4];
    RingWord* x0;
    RingWord* const (&z)[3];
    std::size_t half;                           // words
    unsigned a = 0, b = 0, c = 0, d = 0;        // first sums and differences
    unsigned sum = 0, difference = 0, zero = 0; // a + c, a - c, 0 - d

    template <class B>
    ZVP_KERNEL_INLINE void run(std::size_t w) {
        if constexpr (Two) {
            const B none = B::zero();
            add_up<B>(B::load(in[0] + w), B::load(in[1] + w), none, none, w);
        } else {
            add_up<B>(B::load(in[0] + w), B::load(in[1] + w), B::load(in[2] + w), B::load(in[3] + w), w);
        }
    }

    /// The last limb, which holds one word.
    ZVP_KERNEL_INLINE void run_last(std::size_t w) {
        const auto word = [&](int i) { return OneLimb{Two && i >= 2 ? 0 : in[i][w]}; };
        add_up<OneLimb>(word(0), word(1), word(2), word(3), w);
    }

private:
    template <class B>
    ZVP_KERNEL_INLINE void add_up(B p0, B p1, B p2, B p3, std::size_t w) {
        B up = p0, down = p0, up1 = p1, down1 = p1;
        if constexpr (!Two) {
            up = add(p0, p2, a);
            down = subtract(p0, p2, b);
            up1 = add(p1, p3, c);
            down1 = subtract(p1, p3, d);
        }
        add(up, up1, sum).store(x0 + w);
        subtract(up, up1, difference).store(z[0] + w);
        down.store(z[1] + w);
        down1.store(z[1] + half + w);
        down.store(z[2] + w);
        subtract(B::zero(), down1, zero).store(z[2] + half + w);
    }
};

template <bool Two>
ZVP_KERNEL_INLINE void load4_halves(const RingWord* const (&in)[4], RingWord* x0, RingWord* const (&z)[3],
                                    std::size_t n) {
    Load4Step<Two> k{in, x0, z, n / 2};
    for_blocks(n / 4 - 1, k);
    k.run_last(n / 2 - 2);
    std::memset(x0 + n / 2, 0, 2 * n);
    std::memset(z[0] + n / 2, 0, 2 * n);
    settle(x0, n, wide(k.a) + wide(k.c) + wide(k.sum), 0);
    settle(z[0], n, wide(k.a) - wide(k.c) - wide(k.difference), 0);
    settle(z[1], n, -wide(k.b), -wide(k.d));
    settle(z[2], n, -wide(k.b), wide(k.d) - wide(k.zero));
}

void load4(const RingWord* const (&in)[4], RingWord* x0, RingWord* const (&z)[3], std::size_t n, bool two) {
    if (two) return load4_halves<true>(in, x0, z, n);
    load4_halves<false>(in, x0, z, n);
}

/// z = x << Bits, whole limbs, complemented or not.
template <bool Complement, bool Bits>
struct ShiftStep {
    RingWord* z;
    const RingWord* x;
    int bits;

    template <class B>
    ZVP_KERNEL_INLINE void run(std::size_t w) {
        B limbs = B::load(x + w);
        if constexpr (Bits) limbs = shift(limbs, B::load(x + w - 2), bits);
        if constexpr (Complement) limbs = complement(limbs);
        limbs.store(z + w);
    }
};

/// `count` limbs of x << bits from limb `first` on, to z.
template <bool Complement>
void shifted(RingWord* z, const RingWord* x, std::size_t first, std::size_t count, int bits) {
    if (count == 0) return;
    if (bits == 0) {
        ShiftStep<Complement, false> step{z, x + 2 * first, 0};
        return for_blocks(count, step);
    }
    if (first == 0) {
        const Limb lowest = OneLimb::load(x).v << bits;
        OneLimb{Complement ? ~lowest : lowest}.store(z);
        z += 2;
        ++first;
        --count;
    }
    ShiftStep<Complement, true> step{z, x + 2 * first, bits};
    for_blocks(count, step);
}

/// The limbs of x << bits are written from limb q on; those that pass 2^N come in at the bottom with the other sign. A
/// negative run of limbs is its complement, plus 1 at its bottom and less 1 above its top.
void rotate(RingWord* z, const RingWord* x, std::size_t n, std::uint64_t s) {
    const std::uint64_t N = 32 * std::uint64_t{n};
    const bool negative = s >= N;
    if (negative) s -= N;
    const std::size_t limbs = n / 2, q = s / 64, rest = limbs - q;
    const int bits = static_cast<int>(s % 64);
    Wide above = top_of(x, n) << bits; // of x << bits, in units of 2^N
    if (bits > 0) above += OneLimb::load(x + n - 2).v >> (64 - bits);
    z[n] = 0;
    if (!negative) {
        shifted<true>(z, x, rest, q, bits);
        shifted<false>(z + 2 * q, x, 0, rest, bits);
        add_at(z, n, q, -above - (q > 0));
        if (q > 0) add_at(z, n, 0, 1);
    } else {
        shifted<false>(z, x, rest, q, bits);
        shifted<true>(z + 2 * q, x, 0, rest, bits);
        add_at(z, n, q, above + 1);
        z[n] -= 1;
    }
}

void normalize(RingWord* x, std::size_t n) {
    for (int round = 0; round < 2; ++round) {
        const Wide top = top_of(x, n);
        if (top == 0) return;
        x[n] = 0;
        add_at(x, n, 0, -top);
    }
    if (top_of(x, n) >= 0) return; // 0, or 1 with all words zero
    // -1: it is 2^N.
    std::memset(x, 0, n * sizeof *x);
    x[n] = 1;
}

/// Limbs are summed modulo 2^62 - 1, a multiple of 2^31 - 1, lazily: any 64 bits stand for their residue.
constexpr int sum_bits = 2 * residue_bits;

ZVP_KERNEL_INLINE Block folded(Block a) { return plus(masked(a, (Limb{1} << sum_bits) - 1), right(a, sum_bits)); }

/// a * 2^bits, below 2^62 + 2^(bits + 2).
ZVP_KERNEL_INLINE Block turned(Block a, int bits) {
    return plus(masked(left(a, bits), (Limb{1} << sum_bits) - 1), right(a, sum_bits - bits));
}

constexpr std::size_t residue_width = 2 * Block::limbs; // words
constexpr std::size_t residue_period = 31;              // blocks: limbs weigh 2^(64 i), which is 2^(2 i)

/// The sums of the blocks at [first, first + Group) of each period, with 2^32 = 2, to `sums`. Words are summed as they
/// stand: 2^30 of them fit.
template <std::size_t Group>
ZVP_KERNEL_INLINE void sum_periods(const RingWord* x, std::size_t first, std::size_t blocks, Block* sums) {
    Block low[Group], high[Group];
    for (std::size_t j = 0; j < Group; ++j) low[j] = high[j] = Block::zero();
    const auto add = [&](std::size_t i, std::size_t j) {
        const Block block = Block::load(x + (i + j) * residue_width);
        low[j] = plus(low[j], masked(block, 0xFFFF'FFFF));
        high[j] = plus(high[j], right(block, 32));
    };
    std::size_t i = first;
    for (; i + Group <= blocks; i += residue_period)
        for (std::size_t j = 0; j < Group; ++j) add(i, j);
    for (std::size_t j = 0; j < Group; ++j)
        if (i + j < blocks) add(i, j);
    for (std::size_t j = 0; j < Group; ++j) sums[first + j] = plus(low[j], left(high[j], 1));
}

/// Blocks of equal weight are summed, then Horner's rule goes over the period from its top. What is less than a block goes
/// word by word.
std::uint32_t residue(const RingWord* x, std::size_t words) {
    constexpr int step = 2 * Block::limbs;
    const std::size_t blocks = words / residue_width;
    constexpr std::size_t group = Block::limbs, last_group = residue_period % group;
    Block sums[residue_period], total = Block::zero();
    std::size_t first = 0;
    for (; first + group <= residue_period && first < blocks; first += group)
        sum_periods<group>(x, first, blocks, sums);
    if (first < blocks) sum_periods<last_group>(x, residue_period - last_group, blocks, sums);
    for (std::size_t j = std::min(blocks, residue_period); j-- > 0;) total = plus(turned(total, step), sums[j]);
    RingWord lanes[residue_width];
    total.store(lanes);
    std::uint64_t sum = 0, rest = 0;
    for (std::size_t i = 0; i < Block::limbs; ++i)
        sum += std::uint64_t{reduce_residue(OneLimb::load(lanes + 2 * i).v)} << 2 * i;
    for (std::size_t i = words; i > blocks * residue_width; --i) rest = 2 * rest + x[i - 1];
    return add_residues(reduce_residue(sum), shift_residue(reduce_residue(rest), blocks * residue_width));
}

constexpr RingKernels kernels{&butterfly, &forward4, &load4, &inverse4, &rotate, &subtract, &normalize, &residue};
