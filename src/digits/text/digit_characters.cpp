#include "digits/text/digit_characters.h"

#include "digits/text/kernels/character_tables.h"

namespace zvp {

const CharacterKernels& character_kernels(platform::KernelSet set) {
    switch (set) {
    case platform::KernelSet::sse3: break;
    case platform::KernelSet::avx2: return avx2::character_kernel_table();
    case platform::KernelSet::avx512: return avx512::character_kernel_table();
    }
    return sse3::character_kernel_table();
}

CharacterRoutine text_of_digits(unsigned radix) {
    const CharacterKernels& kernels = character_kernels(platform::active_kernel_set());
    return radix == 10 ? kernels.decimal_to_text : radix == 16 ? kernels.hexadecimal_to_text : nullptr;
}

CharacterRoutine digits_of_text(unsigned radix) {
    const CharacterKernels& kernels = character_kernels(platform::active_kernel_set());
    return radix == 10 ? kernels.text_to_decimal : radix == 16 ? kernels.text_to_hexadecimal : nullptr;
}

} // namespace zvp
