#pragma once
// The tables that the sources of the kernel sets fill.

#include "multiply/fft/fft_kernels.h"

namespace zvp::sse3 {
const FftKernels& fft_kernel_table();
}
namespace zvp::avx2 {
const FftKernels& fft_kernel_table();
}
namespace zvp::avx512 {
const FftKernels& fft_kernel_table();
const FftKernels& narrow_fft_kernel_table();
} // namespace zvp::avx512
