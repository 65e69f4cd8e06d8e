// What the kernels of all sets begin with: one limb, and what is done at the ends of an element.

__extension__ typedef __int128 Wide;

/// One limb, with the operations of a block.
struct OneLimb {
    static constexpr std::size_t limbs = 1;
    static constexpr bool many_registers = true;
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
    ZVP_KERNEL_INLINE static OneLimb no_count() { return zero(); }
    ZVP_KERNEL_INLINE friend OneLimb lifted(OneLimb a) { return a; }
    ZVP_KERNEL_INLINE friend OneLimb lowered(OneLimb a) { return a; }
    ZVP_KERNEL_INLINE friend OneLimb turned_up(OneLimb count) { return count; }
    ZVP_KERNEL_INLINE friend OneLimb moved_up(OneLimb, OneLimb before) { return before; }
    ZVP_KERNEL_INLINE static OneLimb no_changes() { return {0}; }
    ZVP_KERNEL_INLINE friend OneLimb with_changes(OneLimb changes, OneLimb a, OneLimb b) {
        return {changes.v | (a.v ^ b.v)};
    }
    ZVP_KERNEL_INLINE friend bool any(OneLimb changes) { return changes.v >> 63 != 0; }
    ZVP_KERNEL_INLINE static unsigned bits_of(Limbs there) { return there; }
    ZVP_KERNEL_INLINE friend OneLimb less_one_above(OneLimb a, Limbs) { return a; }
    ZVP_KERNEL_INLINE friend OneLimb add_to_top(OneLimb a, Limb count) { return {a.v + count}; }
};

ZVP_KERNEL_INLINE Wide top_of(const RingWord* x, std::size_t n) { return static_cast<std::int32_t>(x[n]); }

ZVP_KERNEL_INLINE Wide wide(unsigned x) { return static_cast<Wide>(x); }

/// Calls step.run<B>(word) for the limbs [0, count): by blocks, then one by one.
template <class B, class Step>
ZVP_KERNEL_INLINE void for_blocks(std::size_t count, Step& step) {
    std::size_t i = 0;
    for (; i + B::limbs <= count; i += B::limbs) step.template run<B>(2 * i);
    for (; i < count; ++i) step.template run<OneLimb>(2 * i);
}

/// Of a radix-4 step: of four numbers p, q, r, s,
///
///   (p + q) + (r + s),  (p + q) - (r + s),  (p - q) + J (r - s),  (p - q) - J (r - s).
///
/// J moves one half of an element into the other, so that both halves are done at once and each is summed from its own
/// bottom. What leaves a half is settled afterwards: left() of Radix4 returns it.
struct Radix4Operands {
    const RingWord* in[4]; // p, q, r, s
    RingWord* out[4];      // in the order above; out[0] may be one of `in`
    std::size_t half;      // words
};
