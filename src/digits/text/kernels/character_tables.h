#pragma once
// The tables that the sources of the kernel sets fill.

#include "digits/text/digit_characters.h"

namespace zvp::sse3 {
const CharacterKernels& character_kernel_table();
}
namespace zvp::avx2 {
const CharacterKernels& character_kernel_table();
}
namespace zvp::avx512 {
const CharacterKernels& character_kernel_table();
}
