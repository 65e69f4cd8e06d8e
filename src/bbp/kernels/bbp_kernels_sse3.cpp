// The extractor's kernels in the sse3 set.

#include "bbp/bbp_kernels.h"
#include "bbp/kernels/kernel_tables.h"
#include "platform/simd/intrinsics.h"

#include "platform/simd/simd_sse3.h"

namespace zvp::sse3 {

namespace {

constexpr platform::KernelSet this_set = platform::KernelSet::sse3;

#include "platform/simd/vector_pair.inl"

// The split arithmetic has the longest chain of dependent operations: see docs/performance.md.
using Doubles = PairD;
using Integers = PairI;

#include "bbp/kernels/modular_split.inl"

#include "bbp/kernels/bbp_kernels.inl"

} // namespace

const BBPv2::BBPKernels& bbp_kernel_table() { return bbp_kernels; }

} // namespace zvp::sse3
