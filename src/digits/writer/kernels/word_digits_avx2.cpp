// The decoders of words in the avx2 set.

#include "digits/writer/kernels/decoder_tables.h"
#include "digits/writer/word_digits.h"
#include "platform/simd/intrinsics.h"

#include <cstring>

#include "platform/simd/target_avx2_begin.inl"

#include "platform/simd/simd_avx2.h"

namespace zvp::avx2 {

namespace {

constexpr platform::KernelSet this_set = platform::KernelSet::avx2;

#include "digits/hash/kernels/digit_vector_avx2.inl"

#include "digits/writer/kernels/word_vector_avx2.inl"

#include "digits/writer/kernels/word_digits.inl"

} // namespace

const WordDecoders& word_decoder_table() { return word_decoders; }

} // namespace zvp::avx2

#include "platform/simd/target_end.inl"
