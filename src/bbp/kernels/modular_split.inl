// Modular arithmetic on doubles without fused multiply-add. Included in a kernel set's namespace.
//
// All numbers are exact integers. For a divisor m below 2^51, i is 1/m rounded. Adding and subtracting
// magic = 3 * 2^51 rounds a double below 2^51 in magnitude to an integer; adding and subtracting
// splitter = 1.5 * 2^78 rounds it to a multiple of 2^26. With every factor split into a high part, a multiple of 2^26
// below 2^52, and a low part of at most 2^25, all partial products have at most 52 bits. They are summed from the
// largest down, and as the products of x and q * m cancel to below 2^53, every partial sum is exact.
//
// Mode A leaves a doubled result unreduced: |x| <= 2 * 0.6 * m, so that x * x / m stays below 1.5 * 2^49. Mode B, whose
// divisors reach 2^51, reduces after each step and has |x| <= 0.75 * m.

constexpr double magic = 6755399441055744.0;

/// The bit pattern of `magic`: the bits of (x + magic) are this plus x.
constexpr std::int64_t magic_bits = 0x4338000000000000;

constexpr double splitter = 453347182355485940514816.0;

/// Bits of an exponent whose power of two reduce() takes at once: below 2^32, so that the quotient times the divisor is
/// exact.
constexpr int head_bits_large_divisors = 5;

ZVP_KERNEL_INLINE VecD high_part(VecD x) {
    const VecD big = VecD::broadcast(splitter);
    return (x + big) - big;
}

struct ModulusBlock {
    alignas(64) double m[BBPv2::block_terms];
    alignas(64) double inverse[BBPv2::block_terms];
    alignas(64) double high[BBPv2::block_terms];
    alignas(64) double low[BBPv2::block_terms];

    ZVP_KERNEL_INLINE void set(std::size_t at, VecD divisors) {
        const VecD upper = high_part(divisors);
        divisors.store(m + at);
        (VecD::broadcast(1.0) / divisors).store(inverse + at);
        upper.store(high + at);
        (divisors - upper).store(low + at);
    }
};

struct Modulus {
    VecD m, inverse, high, low;

    ZVP_KERNEL_INLINE Modulus(const ModulusBlock& block, std::size_t at)
        : m(VecD::load(block.m + at)), inverse(VecD::load(block.inverse + at)), high(VecD::load(block.high + at)),
          low(VecD::load(block.low + at)) {}

    /// x modulo m, in about [-m/2, m/2], for quotients small enough that their product with m is exact.
    ZVP_KERNEL_INLINE VecD reduce(VecD x) const {
        const VecD big = VecD::broadcast(magic);
        return x - ((x * inverse + big) - big) * m;
    }

    /// x^2 or, where `doubling` is 1 << 52, 2 x^2, modulo m.
    ZVP_KERNEL_INLINE VecD square(VecD x, VecI doubling, bool reduce_result) const {
        const VecD big = VecD::broadcast(magic);
        const VecD q = (x * x * inverse + big) - big;
        const VecD xh = high_part(x), xl = x - xh;
        const VecD qh = high_part(q), ql = q - qh;
        const VecD y = xh * xh - high * qh + xh * (xl + xl) - high * ql - low * qh + xl * xl - low * ql;
        const VecD one_or_two = VecD::from_bits(VecD::broadcast(1.0).bits() + doubling);
        const VecD doubled = y * one_or_two;
        return reduce_result ? reduce(doubled) : doubled;
    }

    /// One step of long division: adds the bits of (magic + x / m) to `sum` and returns the remainder.
    ZVP_KERNEL_INLINE VecD divide(VecD x, VecI& sum) const {
        const VecD big = VecD::broadcast(magic);
        const VecD rounded = x * inverse + big;
        sum = sum + rounded.bits();
        const VecD q = rounded - big;
        const VecD qh = high_part(q), ql = q - qh;
        return x - high * qh - high * ql - low * qh - low * ql;
    }
};
