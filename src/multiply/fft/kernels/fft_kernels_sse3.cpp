// The floating-point transform in the sse3 set.

#include "multiply/fft/kernels/kernel_tables.h"
#include "platform/simd/intrinsics.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <type_traits>

#include "platform/simd/simd_sse3.h"

namespace zvp::sse3 {

namespace {

using Doubles = VecD;
using Integers = VecI;

#include "multiply/fft/kernels/fft_kernels.inl"

} // namespace

const FftKernels& fft_kernel_table() { return kernels; }

} // namespace zvp::sse3
