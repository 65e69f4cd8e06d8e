#include "digits/writer/word_digits.h"

#include "digits/writer/kernels/decoder_tables.h"

namespace zvp {

const WordDecoders& word_decoders(platform::KernelSet set) {
    switch (set) {
    case platform::KernelSet::sse3: break;
    case platform::KernelSet::avx2: return avx2::word_decoder_table();
    case platform::KernelSet::avx512: return avx512::word_decoder_table();
    }
    return sse3::word_decoder_table();
}

} // namespace zvp
