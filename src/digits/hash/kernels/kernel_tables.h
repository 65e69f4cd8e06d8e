#pragma once
// The tables that the sources of the kernel sets fill.

#include "digits/hash/digit_kernels.h"

namespace zvp::sse3 {
const DigitKernels& digit_kernel_table();
}
namespace zvp::avx2 {
const DigitKernels& digit_kernel_table();
}
namespace zvp::avx512 {
const DigitKernels& digit_kernel_table();
}
