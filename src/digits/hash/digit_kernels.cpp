#include "digits/hash/digit_kernels.h"

#include "digits/hash/kernels/kernel_tables.h"

namespace zvp {

const DigitKernels& digit_kernels(platform::KernelSet set) {
    switch (set) {
    case platform::KernelSet::sse3: break;
    case platform::KernelSet::avx2: return avx2::digit_kernel_table();
    case platform::KernelSet::avx512: return avx512::digit_kernel_table();
    }
    return sse3::digit_kernel_table();
}

} // namespace zvp
