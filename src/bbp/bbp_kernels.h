#pragma once
// The inner loops of the extractor, one table for each kernel set.
//
// A sum is kept in base 2^48: n digits, the most significant first, each a signed 64-bit sum in `lanes` running
// sums; digit j of lane i is digits[j * lanes + i]. One call adds at most 2^59 to the magnitude of a digit over
// all lanes, so that a buffer that was normalised before the call can't overflow in it.

#include "platform/kernel_set.h"

#include <cstddef>
#include <cstdint>

namespace BBPv2 {

inline constexpr std::size_t digit_bits = 48;

/// Terms whose exponentiations run in step with each other. Enough to hide the latency of a chain of dependent
/// multiplications behind the throughput of the others.
inline constexpr std::size_t block_terms = 64;

/// The most terms that one call takes: few enough that the sums can't overflow, so many that normalising them between
/// the calls costs nothing beside the terms.
inline constexpr std::size_t max_call_terms = 32 * block_terms;

/// The divisors that modes A and B take must be below these powers of two.
inline constexpr unsigned mode_a_bits = 49;
inline constexpr unsigned mode_b_bits = 51;

/// `count` terms 2^(exponent - i * exponent_step) / (divisor + i * divisor_step), no exponent below 0.
struct PowerTerms {
    std::uint64_t divisor;
    std::uint64_t divisor_step;
    std::uint64_t exponent;
    std::uint64_t exponent_step;
    std::size_t count;
};

/// `count` terms 2^-(shift + i * shift_step) / (divisor + i * divisor_step).
struct ShiftedTerms {
    std::uint64_t divisor;
    std::uint64_t divisor_step;
    std::uint64_t shift;
    std::uint64_t shift_step;
    std::size_t count;
};

/// The functions add the terms, modulo 1, to `digits` (n * lanes sums, 64-byte aligned) and return the set
/// whose code ran. The divisors are below 2^mode_a_bits, or 2^mode_b_bits for mode B and the shifted terms.
struct BBPKernels {
    std::size_t lanes;
    zvp::platform::KernelSet (*sum_powers_mode_a)(std::int64_t* digits, std::size_t n, const PowerTerms& terms);
    zvp::platform::KernelSet (*sum_powers_mode_b)(std::int64_t* digits, std::size_t n, const PowerTerms& terms);
    zvp::platform::KernelSet (*sum_shifted)(std::int64_t* digits, std::size_t n, const ShiftedTerms& terms);
};

/// The table of a set; call it only for sets that the machine supports.
const BBPKernels& bbp_kernels(zvp::platform::KernelSet set);

} // namespace BBPv2
