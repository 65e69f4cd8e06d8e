// The kernels of the extractor. Included in a kernel set's namespace, behind its vectors (Doubles, Integers)
// and modular arithmetic.
//
//   block of 64 terms:   divisors m, m + a, m + 2a ...     exponents e, e - s, e - 2s ...
//   1. raise             x = 2^(top bits of e), then one squaring for each further bit of e, doubled where the
//   bit is 1
//   2. divide            x / m as digits in base 2^48, summed over the block
// Each pass runs over all vectors of the block before the next begins, so that their dependent chains overlap.

struct TermBlock {
    alignas(64) double x[BBPv2::block_terms];
    alignas(64) std::int64_t exponent[BBPv2::block_terms];
    ModulusBlock modulus;
};

constexpr std::size_t lanes = Doubles::lanes;
constexpr double digit_base = 281474976710656.0; // 2^48
constexpr int mantissa_bits = 52;
constexpr std::int64_t exponent_unit = std::int64_t{1} << mantissa_bits;

/// The first divisor from which a power of two below 2^64 reduces to a quotient below 2^50.
constexpr std::uint64_t large_divisor = std::uint64_t{1} << 14;

/// 0, 1, 2 ... in the lanes.
ZVP_KERNEL_INLINE Doubles lane_numbers() {
    alignas(64) static constexpr double numbers[8] = {0, 1, 2, 3, 4, 5, 6, 7};
    return Doubles::load(numbers);
}

/// Divisors first + i * step for the whole block; exact, as they are below 2^53.
ZVP_KERNEL_INLINE void set_divisors(TermBlock& block, std::uint64_t first, std::uint64_t step) {
    const Doubles stride = Doubles::broadcast(static_cast<double>(step));
    Doubles divisors = Doubles::broadcast(static_cast<double>(first)) + stride * lane_numbers();
    const Doubles advance = stride * Doubles::broadcast(static_cast<double>(lanes));
    for (std::size_t at = 0; at < BBPv2::block_terms; at += lanes) {
        block.modulus.set(at, divisors);
        divisors = divisors + advance;
    }
}

ZVP_KERNEL_INLINE void set_exponents(TermBlock& block, std::uint64_t first, std::uint64_t step) {
    for (std::size_t i = 0; i < BBPv2::block_terms; ++i)
        block.exponent[i] = static_cast<std::int64_t>(first - i * step);
}

/// x = x^2 or 2 x^2 for all terms, by one bit of their exponents that they share.
ZVP_KERNEL_INLINE void square_by_shared_bit(TermBlock& block, std::int64_t doubling_bits, bool reduce_result) {
    const Integers doubling = Integers::broadcast(doubling_bits);
    for (std::size_t at = 0; at < BBPv2::block_terms; at += lanes)
        Modulus(block.modulus, at).square(Doubles::load(block.x + at), doubling, reduce_result).store(block.x + at);
}

/// The same, each term by the bit of its own exponent.
ZVP_KERNEL_INLINE void square_by_own_bit(TermBlock& block, int bit, bool reduce_result) {
    const Integers mask = Integers::broadcast(exponent_unit);
    const int left = bit <= mantissa_bits ? mantissa_bits - bit : 0;
    const int right = bit <= mantissa_bits ? 0 : bit - mantissa_bits;
    const bool shifts_left = right == 0;
    for (std::size_t at = 0; at < BBPv2::block_terms; at += lanes) {
        const Integers exponents = Integers::load(block.exponent + at);
        const Integers moved = shifts_left ? shift_left(exponents, left) : shift_right(exponents, right);
        const Doubles x = Doubles::load(block.x + at);
        Modulus(block.modulus, at).square(x, moved & mask, reduce_result).store(block.x + at);
    }
}

/// x = 2^exponent modulo m. `largest` and `smallest` bound the block's exponents: the bits above their highest
/// difference are common to all.
ZVP_KERNEL_INLINE void raise(TermBlock& block, std::uint64_t largest, std::uint64_t smallest, bool large_divisors,
                             bool reduce_result) {
    const int head_bits = large_divisors ? head_bits_large_divisors : 5;
    const int length = 64 - __builtin_clzll(largest | 1);
    const int rest = length > head_bits ? length - head_bits : 0;
    const std::uint64_t difference = largest ^ smallest;
    const int own_bits = difference == 0 ? 0 : 64 - __builtin_clzll(difference);

    const Integers bias = Integers::broadcast(1023);
    for (std::size_t at = 0; at < BBPv2::block_terms; at += lanes) {
        const Integers head = shift_right(Integers::load(block.exponent + at), rest);
        const Doubles power = Doubles::from_bits(shift_left(head + bias, mantissa_bits));
        Modulus(block.modulus, at).reduce(power).store(block.x + at);
    }
    int bit = rest - 1;
    for (; bit >= own_bits; --bit)
        square_by_shared_bit(block, (largest >> bit & 1) != 0 ? exponent_unit : 0, reduce_result);
    for (; bit >= 0; --bit) square_by_own_bit(block, bit, reduce_result);
}

/// Adds digits first .. n - 1 of x / m to the sums: each step multiplies x by 2^48 and takes a quotient off.
ZVP_KERNEL_INLINE void divide(TermBlock& block, std::int64_t* digits, std::size_t first, std::size_t n) {
    const Integers bias =
        Integers::broadcast(static_cast<std::int64_t>(BBPv2::block_terms / lanes * std::uint64_t{magic_bits}));
    const Doubles base = Doubles::broadcast(digit_base);
    for (std::size_t j = first; j < n; ++j) {
        Integers sum = Integers::load(digits + j * lanes) - bias;
        for (std::size_t at = 0; at < BBPv2::block_terms; at += lanes)
            Modulus(block.modulus, at).divide(Doubles::load(block.x + at) * base, sum).store(block.x + at);
        sum.store(digits + j * lanes);
    }
}

ZVP_KERNEL_INLINE zvp::platform::KernelSet sum_powers(std::int64_t* digits, std::size_t n,
                                                      const BBPv2::PowerTerms& terms, bool reduce_result) {
    TermBlock block;
    for (std::size_t done = 0; done < terms.count; done += BBPv2::block_terms) {
        const std::size_t left = terms.count - done;
        const std::size_t used = left < BBPv2::block_terms ? left : BBPv2::block_terms;
        const std::uint64_t divisor = terms.divisor + done * terms.divisor_step;
        const std::uint64_t largest = terms.exponent - done * terms.exponent_step;
        set_divisors(block, divisor, terms.divisor_step);
        set_exponents(block, largest, terms.exponent_step);
        // Behind the last term of a short block the exponents may pass below 0; any in range will do, as those
        // terms are cleared before the division.
        for (std::size_t i = used; i < BBPv2::block_terms; ++i) block.exponent[i] = block.exponent[0];
        raise(block, largest, largest - (used - 1) * terms.exponent_step, divisor >= large_divisor, reduce_result);
        for (std::size_t i = used; i < BBPv2::block_terms; ++i) block.x[i] = 0;
        divide(block, digits, 0, n);
    }
    return this_set;
}

zvp::platform::KernelSet sum_powers_mode_a(std::int64_t* digits, std::size_t n, const BBPv2::PowerTerms& terms) {
    return sum_powers(digits, n, terms, false);
}

zvp::platform::KernelSet sum_powers_mode_b(std::int64_t* digits, std::size_t n, const BBPv2::PowerTerms& terms) {
    return sum_powers(digits, n, terms, true);
}

/// A term 2^-s / m has no digits before place s / 48. There its division begins, with 2^(48 - s mod 48) as the
/// first dividend; until then its remainder is 0.
zvp::platform::KernelSet sum_shifted(std::int64_t* digits, std::size_t n, const BBPv2::ShiftedTerms& terms) {
    TermBlock block;
    alignas(64) double place[BBPv2::block_terms];
    alignas(64) double dividend[BBPv2::block_terms];
    const Integers bias =
        Integers::broadcast(static_cast<std::int64_t>(BBPv2::block_terms / lanes * std::uint64_t{magic_bits}));
    const Doubles base = Doubles::broadcast(digit_base);
    for (std::size_t done = 0; done < terms.count; done += BBPv2::block_terms) {
        set_divisors(block, terms.divisor + done * terms.divisor_step, terms.divisor_step);
        const std::uint64_t first_shift = terms.shift + done * terms.shift_step;
        const std::size_t first = first_shift / BBPv2::digit_bits;
        std::size_t last = first;
        for (std::size_t i = 0; i < BBPv2::block_terms; ++i) {
            const std::uint64_t shift = first_shift + i * terms.shift_step;
            block.x[i] = 0;
            place[i] = static_cast<double>(shift / BBPv2::digit_bits);
            const bool used = done + i < terms.count;
            const std::uint64_t power = BBPv2::digit_bits - shift % BBPv2::digit_bits;
            dividend[i] = used ? static_cast<double>(std::uint64_t{1} << power) : 0;
            if (used) last = shift / BBPv2::digit_bits;
        }
        for (std::size_t j = first; j <= last && j < n; ++j) {
            const Doubles here = Doubles::broadcast(static_cast<double>(j));
            Integers sum = Integers::load(digits + j * lanes) - bias;
            for (std::size_t at = 0; at < BBPv2::block_terms; at += lanes) {
                const Doubles begun = select_equal(Doubles::load(place + at), here, Doubles::load(dividend + at));
                const Doubles x = Doubles::load(block.x + at) * base + begun;
                Modulus(block.modulus, at).divide(x, sum).store(block.x + at);
            }
            sum.store(digits + j * lanes);
        }
        divide(block, digits, last + 1, n);
    }
    return this_set;
}

constexpr BBPv2::BBPKernels bbp_kernels{lanes, sum_powers_mode_a, sum_powers_mode_b, sum_shifted};
