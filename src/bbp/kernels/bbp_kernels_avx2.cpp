// The extractor's kernels in the avx2 set.

#include "bbp/bbp_kernels.h"
#include "bbp/kernels/kernel_tables.h"
#include "platform/simd/intrinsics.h"

#include "platform/simd/target_avx2_begin.inl"

#include "platform/simd/simd_avx2.h"

namespace zvp::avx2 {

namespace {

constexpr platform::KernelSet this_set = platform::KernelSet::avx2;

using Doubles = VecD;
using Integers = VecI;

#include "bbp/kernels/modular_fused.inl"

#include "bbp/kernels/bbp_kernels.inl"

} // namespace

const BBPv2::BBPKernels& bbp_kernel_table() { return bbp_kernels; }

} // namespace zvp::avx2

#include "platform/simd/target_end.inl"
