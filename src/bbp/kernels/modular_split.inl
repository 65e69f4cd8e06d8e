// Modular arithmetic on doubles without fused multiply-add. Included in a kernel set's namespace.
//
// All numbers are exact integers. For a divisor m below 2^51, i is 1/m rounded. Adding and subtracting
// magic = 3 * 2^51 rounds a double below 2^51 in magnitude to an integer; adding and subtracting
// splitter = 1.5 * 2^78 rounds it to a multiple of 2^26. With every factor split into a high part, a multiple of 2^26
// below 2^52, and a low part of at most 2^25, all partial products have at most 53 bits. They are summed from the
// largest down: a multiple of 2^52 (of 2^48 in a division) that has cancelled to below 2^79, then multiples of 2^26
// below 2^79, then integers below 2^53. So every partial sum is exact.
//
// square(): with |x| <= c * m and y = f * x^2, f = 1 or 2, let q be the integer that x * (f x) * i rounds to. The two
// products and i are each off by at most 2^-53 of their value, so |y - q * m| <= (1/2 + 3 * 2^-53 * 2 c^2 m) * m.
// Mode A, m < 2^49: c <= 1/2 + 3/8 c^2 holds for c = 2/3, and |q| <= 0.9 * 2^49.
// Mode B, m < 2^51: x is reduced at the end, so that c = 1/2 and a little, and |q| <= 2^50.
//
// divide(): a remainder of at most c * m times 2^48 gives |q| <= c * 2^48, so the next is at most (1/2 + c/16) * m.

constexpr double magic = 6755399441055744.0;

/// The bit pattern of `magic`: the bits of (x + magic) are this plus x.
constexpr std::int64_t magic_bits = 0x4338000000000000;

constexpr double splitter = 453347182355485940514816.0;

/// Bits of an exponent whose power of two reduce() takes at once: below 2^32, so that the quotient times the
/// divisor is exact.
constexpr int head_bits_large_divisors = 5;

ZVP_KERNEL_INLINE Doubles high_part(Doubles x) {
    const Doubles big = Doubles::broadcast(splitter);
    return (x + big) - big;
}

struct ModulusBlock {
    alignas(64) double m[BBPv2::block_terms];
    alignas(64) double inverse[BBPv2::block_terms];
    alignas(64) double high[BBPv2::block_terms];
    alignas(64) double low[BBPv2::block_terms];

    ZVP_KERNEL_INLINE void set(std::size_t at, Doubles divisors) {
        const Doubles upper = high_part(divisors);
        divisors.store(m + at);
        (Doubles::broadcast(1.0) / divisors).store(inverse + at);
        upper.store(high + at);
        (divisors - upper).store(low + at);
    }
};

struct Modulus {
    Doubles m, inverse, high, low;

    ZVP_KERNEL_INLINE Modulus(const ModulusBlock& block, std::size_t at)
        : m(Doubles::load(block.m + at)),
          inverse(Doubles::load(block.inverse + at)),
          high(Doubles::load(block.high + at)),
          low(Doubles::load(block.low + at)) {}

    /// x modulo m, in about [-m/2, m/2], for quotients small enough that their product with m is exact.
    ZVP_KERNEL_INLINE Doubles reduce(Doubles x) const {
        const Doubles big = Doubles::broadcast(magic);
        return x - ((x * inverse + big) - big) * m;
    }

    /// x^2 or, where `doubling` is 1 << 52, 2 x^2, modulo m.
    ZVP_KERNEL_INLINE Doubles square(Doubles x, Integers doubling, bool reduce_result) const {
        const Doubles big = Doubles::broadcast(magic);
        const Doubles f = Doubles::from_bits(Doubles::broadcast(1.0).bits() + doubling);
        const Doubles fx = f * x;
        const Doubles q = (x * fx * inverse + big) - big;
        const Doubles xh = high_part(x), xl = x - xh, fxl = f * xl;
        const Doubles qh = high_part(q), ql = q - qh;
        const Doubles y = f * xh * xh - high * qh + xh * (fxl + fxl) - high * ql - low * qh + xl * fxl - low * ql;
        return reduce_result ? reduce(y) : y;
    }

    /// One step of long division: adds the bits of (magic + x / m) to `sum` and returns the remainder.
    ZVP_KERNEL_INLINE Doubles divide(Doubles x, Integers& sum) const {
        const Doubles big = Doubles::broadcast(magic);
        const Doubles rounded = x * inverse + big;
        sum = sum + rounded.bits();
        const Doubles q = rounded - big;
        const Doubles qh = high_part(q), ql = q - qh;
        return x - high * qh - high * ql - low * qh - low * ql;
    }
};
