// Modular arithmetic on doubles with fused multiply-add. Included in a kernel set's namespace.
//
// All numbers are exact integers. For a divisor m below 2^51, i is 1/m rounded. Adding and subtracting
// magic = 3 * 2^51 rounds a double below 2^51 in magnitude to an integer.
//
// square(): with |x| <= c * m and y = x * 2x (or x * x), let h = y rounded, l = y - h (exact, by fusion), and q the
// integer that h * i rounds to. Then h - q * m is exact in one fused operation, since it is an integer below 2^53, and
// so is its sum with l. What is left is congruent to y, and its bound follows from three errors:
//   1/2            rounding of q,
//   2^-53 * |q|    the relative error of i, as |q| <= 2 c^2 m,
//   |l| / m        at most 2^-53 * |y| / m = 2^-53 * 2 c^2 m.
// Mode A, m < 2^49: c <= 1/2 + 2^-3 c^2 + 2^-3 c^2 holds for c = 0.5858, and |q| <= 0.69 * 2^49.
// Mode B, m < 2^51: x is reduced at the end, so that c = 1/2 and a little: |q| <= 2^50 and |y - q * m| <= 3/4 m.
// The first x, a power of two that reduce() took, has c <= 9/16: then |q| <= 0.64 * 2^49 and 0.64 * 2^51.
//
// divide(): a remainder of at most c * m times 2^48 gives |q| <= c * 2^48, so the next is at most (1/2 + c/32) * m.

constexpr double magic = 6755399441055744.0;

/// The bit pattern of `magic`: the bits of (x + magic) are this plus x.
constexpr std::int64_t magic_bits = 0x4338000000000000;

/// Bits of an exponent whose power of two reduce() takes at once: at most 2^63, divided by at least large_divisor, gives
/// a quotient of at most 2^49.
constexpr int head_bits_large_divisors = 6;

struct ModulusBlock {
    alignas(64) double m[BBPv2::block_terms];
    alignas(64) double inverse[BBPv2::block_terms];

    ZVP_KERNEL_INLINE void set(std::size_t at, Doubles divisors) {
        divisors.store(m + at);
        (Doubles::broadcast(1.0) / divisors).store(inverse + at);
    }
};

struct Modulus {
    Doubles m, inverse;

    ZVP_KERNEL_INLINE Modulus(const ModulusBlock& block, std::size_t at)
        : m(Doubles::load(block.m + at)), inverse(Doubles::load(block.inverse + at)) {}

    /// x modulo m, in about [-m/2, m/2].
    ZVP_KERNEL_INLINE Doubles reduce(Doubles x) const {
        const Doubles big = Doubles::broadcast(magic);
        return fnmadd(fmadd(x, inverse, big) - big, m, x);
    }

    /// x^2 or, where `doubling` is 1 << 52, 2 x^2, modulo m. The doubling is one integer addition to the
    /// exponent field of a factor; a factor of 0 becomes 2^-1022, and 0 times that is still 0.
    ZVP_KERNEL_INLINE Doubles square(Doubles x, Integers doubling, bool reduce_result) const {
        const Doubles big = Doubles::broadcast(magic);
        const Doubles factor = Doubles::from_bits(x.bits() + doubling);
        const Doubles high = x * factor;
        const Doubles low = fmsub(x, factor, high);
        const Doubles q = fmadd(high, inverse, big) - big;
        const Doubles y = fnmadd(q, m, high) + low;
        return reduce_result ? reduce(y) : y;
    }

    /// One step of long division: adds the bits of (magic + x / m) to `sum` and returns the remainder.
    ZVP_KERNEL_INLINE Doubles divide(Doubles x, Integers& sum) const {
        const Doubles big = Doubles::broadcast(magic);
        const Doubles rounded = fmadd(x, inverse, big);
        sum = sum + rounded.bits();
        return fnmadd(rounded - big, m, x);
    }
};
