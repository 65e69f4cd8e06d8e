#pragma once
// Products of a few limbs without a loop, for any x86-64 processor. They run before a table of kernels is asked for.

#include "multiply/basecase/limb.h"

namespace zvp::MULB {

/// The longest operands. Squares of so many limbs are the fastest this way whatever the processor; for products a table
/// of kernels says from where its own loops are faster (ProductKernels::tiny_mul).
inline constexpr std::size_t tiny_product = 8;
inline constexpr std::size_t tiny_square = 12;
inline constexpr std::size_t tiny_halves = 6;

/// T[0, a + b - 1) = A * B without its top limb, which is returned; tiny_product >= a >= b >= 1.
std::uint64_t multiply_tiny(limb* T, const limb* A, std::size_t a, const limb* B, std::size_t b);

/// The same for operands one or both of which end in half a limb; a and b count it. tiny_halves >= a >= b >= 1.
std::uint64_t multiply_tiny_halves(limb* T, const limb* A, std::size_t a, const limb* B, std::size_t b, bool half_a,
                                   bool half_b);

/// T[0, 2n - 1) = A^2 without its top limb, which is returned; tiny_square >= n >= 1.
std::uint64_t square_tiny(limb* T, const limb* A, std::size_t n);

} // namespace zvp::MULB
