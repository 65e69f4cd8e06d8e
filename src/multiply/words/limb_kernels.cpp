#include "multiply/words/limb_kernels.h"

#include "multiply/words/carry_chain.h"

namespace zvp {

namespace {

/// The low limb of a * x + addend + carry, which the high one replaces. In assembly: g++ 12 and clang 14 differ by a third
/// in what they make of 128-bit sums.
c64i mul_step(c64i a, c64i x, c64i addend, c64i& carry) {
    c64i high;
    __asm__("mul %[x]\n\t"
            "add %[addend], %[low]\n\t"
            "adc $0, %[high]\n\t"
            "add %[carry], %[low]\n\t"
            "adc $0, %[high]"
            : [low] "+&a"(a), [high] "=&d"(high)
            : [x] "r"(x), [addend] "r"(addend), [carry] "r"(carry)
            : "cc");
    carry = high;
    return a;
}

c64i mul(void* T, const void* A, std::size_t limbs, c64i x, c64i carry) {
    for (std::size_t i = 0; i < limbs; ++i) {
        c64i low = load_limb(A, i), high;
        __asm__("mul %[x]\n\t"
                "add %[carry], %[low]\n\t"
                "adc $0, %[high]"
                : [low] "+&a"(low), [high] "=&d"(high)
                : [x] "r"(x), [carry] "r"(carry)
                : "cc");
        store_limb(T, i, low);
        carry = high;
    }
    return carry;
}

c64i mul_add(void* T, const void* A, std::size_t limbs, c64i x, c64i carry) {
    for (std::size_t i = 0; i < limbs; ++i) store_limb(T, i, mul_step(load_limb(A, i), x, load_limb(T, i), carry));
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
