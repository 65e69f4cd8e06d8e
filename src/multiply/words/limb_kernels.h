#pragma once
// The inner loops of word arithmetic, one table for each kernel set. All work on 64-bit limbs at any alignment; a target
// may be one of the operands.

#include "multiply/words/word_types.h"
#include "platform/kernel_set.h"

namespace zvp {

struct LimbKernels {
    platform::KernelSet set;

    /// T = A + B + carry; returns the carry out.
    bool (*add)(void* T, const void* A, const void* B, std::size_t limbs, bool carry);

    /// T = A - B - borrow; returns the borrow out.
    bool (*subtract)(void* T, const void* A, const void* B, std::size_t limbs, bool borrow);

    /// T = A * x + carry; returns the high limb.
    c64i (*mul)(void* T, const void* A, std::size_t limbs, c64i x, c64i carry);

    /// T += A * x + carry; returns the high limb.
    c64i (*mul_add)(void* T, const void* A, std::size_t limbs, c64i x, c64i carry);
};

/// The table of a set; call it only for sets that the machine supports.
const LimbKernels& limb_kernels(platform::KernelSet set);

/// The table of the active set.
const LimbKernels& limb_kernels();

namespace avx2 {
extern const LimbKernels limb_kernel_table;
}
namespace avx512 {
extern const LimbKernels limb_kernel_table;
}

} // namespace zvp
