// The decoders of words in the sse3 set.

#include "digits/writer/kernels/decoder_tables.h"
#include "digits/writer/word_digits.h"
#include "platform/simd/intrinsics.h"

#include <cstring>

#include "platform/simd/simd_sse3.h"

namespace zvp::sse3 {

namespace {

constexpr platform::KernelSet this_set = platform::KernelSet::sse3;

#include "digits/hash/kernels/digit_vector_sse3.inl"

#include "digits/writer/kernels/word_vector_sse3.inl"

#include "digits/writer/kernels/word_digits.inl"

} // namespace

const WordDecoders& word_decoder_table() { return word_decoders; }

} // namespace zvp::sse3
