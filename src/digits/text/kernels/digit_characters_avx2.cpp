// Digit values and characters in the avx2 set.

#include "digits/text/digit_characters.h"
#include "digits/text/kernels/character_tables.h"
#include "platform/simd/intrinsics.h"

#include <cstring>

#include "platform/simd/target_avx2_begin.inl"

#include "platform/simd/simd_avx2.h"

namespace zvp::avx2 {

namespace {

constexpr platform::KernelSet this_set = platform::KernelSet::avx2;

#include "digits/hash/kernels/digit_vector_avx2.inl"

#include "digits/text/kernels/digit_characters.inl"

} // namespace

const CharacterKernels& character_kernel_table() { return character_kernels; }

} // namespace zvp::avx2

#include "platform/simd/target_end.inl"
