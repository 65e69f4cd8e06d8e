#pragma once
// The tables that the sources of the kernel sets fill.

#include "multiply/hybrid/ring_kernels.h"

namespace zvp::sse3 {
const RingKernels& ring_kernel_table();
}
namespace zvp::avx2 {
const RingKernels& ring_kernel_table();
}
namespace zvp::avx512 {
const RingKernels& ring_kernel_table();
}
