// The floating-point transform in the avx512 set, with narrow vectors for the shortest lengths.

#include "multiply/fft/kernels/kernel_tables.h"
#include "platform/simd/intrinsics.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <type_traits>

#include "platform/simd/target_avx512_begin.inl"

#include "platform/simd/simd_avx2.h"
#include "platform/simd/simd_avx512.h"

namespace zvp::avx512 {

namespace {

namespace wide {

using Doubles = VecD;
using Integers = VecI;

#include "multiply/fft/kernels/fft_kernels.inl"

} // namespace wide

namespace narrow {

using Doubles = avx2::VecD;
using Integers = avx2::VecI;
using avx2::BalancedFields;

#include "multiply/fft/kernels/fft_kernels.inl"

} // namespace narrow

} // namespace

const FftKernels& fft_kernel_table() { return wide::kernels; }
const FftKernels& narrow_fft_kernel_table() { return narrow::kernels; }

} // namespace zvp::avx512

#include "platform/simd/target_end.inl"
