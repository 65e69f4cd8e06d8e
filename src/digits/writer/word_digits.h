#pragma once
// Digits out of words: the inner loops, one table for each kernel set.

#include "platform/kernel_set.h"

#include <cstddef>
#include <cstdint>

namespace zvp {

/// Writes the digits of n words, as one byte each: those of the top word words[n - 1] first, each word's most significant
/// digit first. No address needs to be aligned.
using WordDecoder = void (*)(std::uint8_t* output, const std::uint32_t* words, std::size_t n);

struct WordDecoders {
    platform::KernelSet set;

    /// 9 digits a word. A word of 10^9 or more, which only a fault can make, gets a first "digit" above 9.
    WordDecoder decimal;

    /// 8 digits a word.
    WordDecoder hexadecimal;
};

/// The table of a set; call it only for sets that the machine supports.
const WordDecoders& word_decoders(platform::KernelSet set);

} // namespace zvp
