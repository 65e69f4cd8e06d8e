// The hash and the digit counts in the avx512 set.

#include "digits/hash/digit_kernels.h"
#include "digits/hash/hash_field.h"
#include "digits/hash/kernels/kernel_tables.h"
#include "platform/simd/intrinsics.h"

#include <utility>

#include "platform/simd/target_avx512_begin.inl"

#include "platform/simd/simd_avx512.h"

namespace zvp::avx512 {

namespace {

constexpr platform::KernelSet this_set = platform::KernelSet::avx512;

#include "digits/hash/kernels/digit_vector_avx512.inl"

#include "digits/hash/kernels/rotation.inl"

#include "digits/hash/kernels/word_hash.inl"

#include "digits/hash/kernels/digit_hash.inl"

#include "digits/hash/kernels/digit_counts.inl"

#include "digits/hash/kernels/digit_kernels.inl"

} // namespace

const DigitKernels& digit_kernel_table() { return digit_kernels; }

} // namespace zvp::avx512

#include "platform/simd/target_end.inl"
