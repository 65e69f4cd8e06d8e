// The floating-point transform in the avx2 set.

#include "multiply/fft/kernels/kernel_tables.h"
#include "platform/simd/intrinsics.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <type_traits>

#include "platform/simd/target_avx2_begin.inl"

#include "platform/simd/simd_avx2.h"

namespace zvp::avx2 {

namespace {

using Doubles = VecD;
using Integers = VecI;

#include "multiply/fft/kernels/fft_kernels.inl"

} // namespace

const FftKernels& fft_kernel_table() { return kernels; }

} // namespace zvp::avx2

#include "platform/simd/target_end.inl"
