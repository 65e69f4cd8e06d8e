// Digit values and characters in the avx512 set.

#include "digits/text/digit_characters.h"
#include "digits/text/kernels/character_tables.h"
#include "platform/simd/intrinsics.h"

#include <cstring>

#include "platform/simd/target_avx512_begin.inl"

#include "platform/simd/simd_avx512.h"

namespace zvp::avx512 {

namespace {

constexpr platform::KernelSet this_set = platform::KernelSet::avx512;

#include "digits/hash/kernels/digit_vector_avx512.inl"

#include "digits/text/kernels/digit_characters.inl"

} // namespace

const CharacterKernels& character_kernel_table() { return character_kernels; }

} // namespace zvp::avx512

#include "platform/simd/target_end.inl"
