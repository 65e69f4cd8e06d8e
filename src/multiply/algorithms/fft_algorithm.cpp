#include "multiply/algorithms/fft_algorithm.h"

#include "multiply/algorithms/fft_transform.h"
#include "multiply/contract/multiply_tables.h"
#include "multiply/contract/transform_algorithm.h"
#include "multiply/fft/fft.h"

namespace zvp {

namespace {

template <class Word>
class FFTAlgorithm final : public TransformAlgorithm<Word> {
public:
    FFTAlgorithm()
        : TransformAlgorithm<Word>(FFTTransform::id, "Floating-Point FFT", "FFTv2", "vector scalable", fft_max_bits) {}

    void ensure_tables(MultiplyTables& tables, std::uint64_t words) const override {
        const FftLength length = fft_length(bits_of(words));
        tables.grow<FftTables>(length.capacity_bits()).ensure(bits_of(words));
    }

    TransformSizes sizes(std::uint64_t words, std::uint32_t) const override {
        const FftLength length = fft_length(bits_of(words));
        return {fft_transform_bytes(length), fft_scratch_bytes(length)};
    }

    const Transform& params(TransformObject& object, std::uint64_t words, std::uint32_t) const override {
        return object.emplace<FFTTransform>(bits_of(words));
    }

private:
    static std::uint64_t bits_of(std::uint64_t words) { return words * word_bits<Word>; }
};

} // namespace

template <class Word>
const MultiplyAlgorithm<Word>& fft_algorithm() {
    static const FFTAlgorithm<Word> algorithm;
    return algorithm;
}

template const MultiplyAlgorithm<c32i>& fft_algorithm<c32i>();
template const MultiplyAlgorithm<c64i>& fft_algorithm<c64i>();

} // namespace zvp
