#pragma once
// The inner loops of the smallest products, one table per kernel set. Lengths are in limbs and at least 1. Targets
// don't overlap operands except where a function says so.

#include "multiply/basecase/limb.h"
#include "platform/kernel_set.h"

namespace zvp::MULB {

struct ProductKernels {
    /// T[0, a + b - 1) = A * B without its top limb, which is returned; schoolbook, a * b limb products. Where the
    /// operands end in half a limb, the caller keeps less of the top limb, or nothing.
    std::uint64_t (*mul)(limb* T, const limb* A, std::size_t a, const limb* B, std::size_t b);

    /// T[0, 2n - 1) = A^2 without its top limb, which is returned; schoolbook, n * (n + 1) / 2 limb products. n > 1.
    std::uint64_t (*sqr)(limb* T, const limb* A, std::size_t n);

    /// T = A - B; returns the borrow, 0 or 1.
    std::uint64_t (*subtract)(limb* T, const limb* A, const limb* B, std::size_t n);

    /// T += A; returns the carry, 0 or 1.
    std::uint64_t (*add)(limb* T, const limb* A, std::size_t n);

    /// S = P0 + P2 - S, or P0 + P2 + S when `plus`; returns what leaves the top, -1 .. 2. n is even.
    std::int64_t (*merge)(limb* S, const limb* P0, const limb* P2, std::size_t n, bool plus);

    /// Operands of at most so many limbs have their product by multiply_tiny().
    std::size_t tiny_mul;

    /// Operands of so many limbs or more are cut in halves; at least 8, as below 14 c32i words, which
    /// 7 limbs hold, mul_scratch() has no room.
    std::size_t karatsuba_mul;
    std::size_t karatsuba_sqr;
};

/// The table of a set that this processor supports.
const ProductKernels& product_kernels(platform::KernelSet set);

/// The table of this process's kernel set.
inline const ProductKernels& active_product_kernels() {
    static const ProductKernels& kernels = product_kernels(platform::active_kernel_set());
    return kernels;
}

} // namespace zvp::MULB
