// The decoders of words in the avx512 set.

#include "digits/writer/kernels/decoder_tables.h"
#include "digits/writer/word_digits.h"
#include "platform/simd/intrinsics.h"

#include <cstring>

#include "platform/simd/target_avx512_begin.inl"

#include "platform/simd/simd_avx512.h"

namespace zvp::avx512 {

namespace {

constexpr platform::KernelSet this_set = platform::KernelSet::avx512;

#include "digits/hash/kernels/digit_vector_avx512.inl"

#include "digits/writer/kernels/word_vector_avx512.inl"

#include "digits/writer/kernels/word_digits.inl"

} // namespace

const WordDecoders& word_decoder_table() { return word_decoders; }

} // namespace zvp::avx512

#include "platform/simd/target_end.inl"
