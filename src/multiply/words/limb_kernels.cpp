#include "multiply/words/limb_kernels.h"

#include "multiply/words/carry_chain.h"

namespace zvp {

namespace {

using c128i = unsigned __int128;

c64i mul(void* T, const void* A, std::size_t limbs, c64i x, c64i carry) {
    for (std::size_t i = 0; i < limbs; ++i) {
        const c128i v = c128i{load_limb(A, i)} * x + carry;
        store_limb(T, i, static_cast<c64i>(v));
        carry = static_cast<c64i>(v >> 64);
    }
    return carry;
}

c64i mul_add(void* T, const void* A, std::size_t limbs, c64i x, c64i carry) {
    for (std::size_t i = 0; i < limbs; ++i) {
        const c128i v = c128i{load_limb(A, i)} * x + load_limb(T, i) + carry;
        store_limb(T, i, static_cast<c64i>(v));
        carry = static_cast<c64i>(v >> 64);
    }
    return carry;
}

constexpr LimbKernels sse3_table{platform::KernelSet::sse3, add_chain, subtract_chain, mul, mul_add};

} // namespace

const LimbKernels& limb_kernels(platform::KernelSet set) {
    switch (set) {
    case platform::KernelSet::avx512: return avx512::limb_kernel_table;
    case platform::KernelSet::avx2: return avx2::limb_kernel_table;
    case platform::KernelSet::sse3: break;
    }
    return sse3_table;
}

const LimbKernels& limb_kernels() {
    static const LimbKernels& active = limb_kernels(platform::active_kernel_set());
    return active;
}

} // namespace zvp
