#include "multiply/algorithms/word_pair_transform.h"

#include "app/failure/exceptions.h"

namespace zvp {

void WordPairTransform::check_capacity(std::uint64_t words) const {
    const std::uint64_t bits = words * word_bits<c32i>;
    if (bits > capacity_bits)
        throw ConvolutionTooSmallException(name(), "Convolution length is too small.", capacity_bits, bits);
}

} // namespace zvp
