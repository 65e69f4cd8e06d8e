#pragma once
// The tables that the sources of the kernel sets fill.

#include "bbp/bbp_kernels.h"

namespace zvp::sse3 {
const BBPv2::BBPKernels& bbp_kernel_table();
}
namespace zvp::avx2 {
const BBPv2::BBPKernels& bbp_kernel_table();
}
namespace zvp::avx512 {
const BBPv2::BBPKernels& bbp_kernel_table();
}
