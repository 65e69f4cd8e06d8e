#pragma once
// The tables that the sources of the kernel sets fill.

#include "digits/writer/word_digits.h"

namespace zvp::sse3 {
const WordDecoders& word_decoder_table();
}
namespace zvp::avx2 {
const WordDecoders& word_decoder_table();
}
namespace zvp::avx512 {
const WordDecoders& word_decoder_table();
}
