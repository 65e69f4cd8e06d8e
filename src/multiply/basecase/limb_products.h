#pragma once
// Products of limb arrays of any lengths: schoolbook below a table's thresholds, above it subtractive Karatsuba
// (A. Karatsuba and Y. Ofman, 1962; the middle product as |A0 - A1| * |B0 - B1| with its sign kept apart).
//
// S is scratch of at least 6 * min(a, b) limbs and 2 for each halving. T overlaps neither operand nor S.

#include "multiply/basecase/product_kernels.h"
#include "multiply/basecase/tiny_products.h"

#include <utility>

namespace zvp::MULB {

/// Whether the product of such operands is formed without scratch.
inline bool schoolbook(const ProductKernels& kernels, std::size_t a, std::size_t b) {
    return (a < b ? a : b) < kernels.karatsuba_mul;
}

/// T[0, a + b - 1) = A * B without its top limb, which is returned; schoolbook, any a, b >= 1.
inline std::uint64_t multiply_schoolbook(const ProductKernels& kernels, limb* T, const limb* A, std::size_t a,
                                         const limb* B, std::size_t b) {
    if (a < b) {
        std::swap(A, B);
        std::swap(a, b);
    }
    return a <= kernels.tiny_mul ? multiply_tiny(T, A, a, B, b) : kernels.mul(T, A, a, B, b);
}

/// T[0, 2n - 1) = A^2 without its top limb, which is returned; schoolbook, any n >= 1.
inline std::uint64_t square_schoolbook(const ProductKernels& kernels, limb* T, const limb* A, std::size_t n) {
    return n <= tiny_square ? square_tiny(T, A, n) : kernels.sqr(T, A, n);
}

/// T[0, 2n) = A^2; n >= 1.
void square(const ProductKernels& kernels, limb* T, const limb* A, std::size_t n, limb* S);

/// T[0, 2n) = A * B; n >= 1.
void multiply_equal(const ProductKernels& kernels, limb* T, const limb* A, const limb* B, std::size_t n, limb* S);

/// T[0, a + b) = A * B; a, b >= 1.
void multiply(const ProductKernels& kernels, limb* T, const limb* A, std::size_t a, const limb* B, std::size_t b,
              limb* S);

} // namespace zvp::MULB
