#pragma once
// Digit values and the characters that stand for them: 0 to 9, and a to f in lower case.

#include "platform/kernel_set.h"

#include <cstddef>
#include <cstdint>

namespace zvp {

/// Turns n bytes of `input` into n bytes of `output`, which may be the same array. Returns whether all of them were valid;
/// where one wasn't, the output is of no use. No address needs to be aligned.
using CharacterRoutine = bool (*)(std::uint8_t* output, const std::uint8_t* input, std::size_t n);

struct CharacterKernels {
    platform::KernelSet set;
    CharacterRoutine decimal_to_text, hexadecimal_to_text;
    CharacterRoutine text_to_decimal, text_to_hexadecimal;
};

/// The table of a set; call it only for sets that the machine supports.
const CharacterKernels& character_kernels(platform::KernelSet set);

/// The routines of the active set for radix 10 or 16; null for another radix.
CharacterRoutine text_of_digits(unsigned radix);
CharacterRoutine digits_of_text(unsigned radix);

} // namespace zvp
