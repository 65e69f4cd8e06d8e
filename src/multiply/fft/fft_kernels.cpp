#include "multiply/fft/fft_kernels.h"

#include "multiply/fft/kernels/kernel_tables.h"

namespace zvp {

const FftKernels& fft_kernels(platform::KernelSet set, unsigned lanes) {
    switch (set) {
    case platform::KernelSet::sse3: break;
    case platform::KernelSet::avx2: return avx2::fft_kernel_table();
    case platform::KernelSet::avx512:
        return lanes == 8 ? avx512::fft_kernel_table() : avx512::narrow_fft_kernel_table();
    }
    return sse3::fft_kernel_table();
}

} // namespace zvp
