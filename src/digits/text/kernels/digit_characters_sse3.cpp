// Digit values and characters in the sse3 set.

#include "digits/text/digit_characters.h"
#include "digits/text/kernels/character_tables.h"
#include "platform/simd/intrinsics.h"

#include <cstring>

#include "platform/simd/simd_sse3.h"

namespace zvp::sse3 {

namespace {

constexpr platform::KernelSet this_set = platform::KernelSet::sse3;

#include "digits/hash/kernels/digit_vector_sse3.inl"

#include "digits/text/kernels/digit_characters.inl"

} // namespace

const CharacterKernels& character_kernel_table() { return character_kernels; }

} // namespace zvp::sse3
