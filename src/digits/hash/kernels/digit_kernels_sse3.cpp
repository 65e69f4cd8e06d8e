// The hash and the digit counts in the sse3 set.

#include "digits/hash/digit_kernels.h"
#include "digits/hash/hash_field.h"
#include "digits/hash/kernels/kernel_tables.h"
#include "platform/simd/intrinsics.h"

#include <utility>

#include "platform/simd/simd_sse3.h"

namespace zvp::sse3 {

namespace {

constexpr platform::KernelSet this_set = platform::KernelSet::sse3;

#include "digits/hash/kernels/digit_vector_sse3.inl"

#include "digits/hash/kernels/rotation.inl"

#include "digits/hash/kernels/word_hash.inl"

#include "digits/hash/kernels/digit_hash.inl"

#include "digits/hash/kernels/digit_counts.inl"

#include "digits/hash/kernels/digit_kernels.inl"

} // namespace

const DigitKernels& digit_kernel_table() { return digit_kernels; }

} // namespace zvp::sse3
