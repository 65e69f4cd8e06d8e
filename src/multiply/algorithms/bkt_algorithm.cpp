#include "multiply/algorithms/bkt_algorithm.h"

#include "multiply/algorithms/bkt_range.h"
#include "multiply/algorithms/bkt_transform.h"
#include "multiply/contract/check_buffers.h"
#include "multiply/contract/range_trimming.h"

namespace zvp {

namespace {

constexpr std::uint64_t bkt_max_bits = 65536;

/// The multiplications hand the operands to the kernels as they are, without forward forms.
template <class Word>
class BKTAlgorithm final : public MultiplyAlgorithm<Word> {
public:
    using MultiplyAlgorithm<Word>::sqr;
    using MultiplyAlgorithm<Word>::mul;

    BKTAlgorithm()
        : MultiplyAlgorithm<Word>(BKTTransform::id, "Basecase/Karatsuba", "MULB", "Basic Multiply", bkt_max_bits) {}

    void ensure_tables(MultiplyTables&, std::uint64_t) const override {}

    TransformSizes sizes(std::uint64_t length, std::uint32_t) const override {
        const std::uint64_t words = c32i_words(length);
        return {BKTTransform::form_bytes(words), BKTTransform::work_bytes(words)};
    }

    const Transform& params(TransformObject& object, std::uint64_t length, std::uint32_t) const override {
        return object.emplace<BKTTransform>(c32i_words(length));
    }

    void sqr(const MultiplyParameters& pars, Word* T, std::size_t s, std::size_t e, const Word* A,
             std::size_t AL) const override {
        check_memory(this->total(2 * std::uint64_t{AL}, pars.tds), pars);
        if (is_dry(T)) return;
        const auto range = trim_range(SquareRange<Word>{s, e, A, AL});
        bkt_sqr(pars.M, T, range.s, range.e, range.A, range.AL);
    }

    void mul(const MultiplyParameters& pars, Word* T, std::size_t s, std::size_t e, const Word* A, std::size_t AL,
             const Word* B, std::size_t BL) const override {
        check_memory(this->total(std::uint64_t{AL} + BL, pars.tds), pars);
        mul_unchecked(pars, T, s, e, A, AL, B, BL);
    }

    void mul_unchecked(const MultiplyParameters& pars, Word* T, std::size_t s, std::size_t e, const Word* A,
                       std::size_t AL, const Word* B, std::size_t BL) const override {
        if (is_dry(T)) return;
        const auto range = trim_range(ProductRange<Word>{s, e, A, AL, B, BL});
        bkt_mul(pars.M, T, range.s, range.e, range.A, range.AL, range.B, range.BL);
    }

private:
    static std::uint64_t c32i_words(std::uint64_t length) { return length * (sizeof(Word) / sizeof(c32i)); }
};

} // namespace

template <class Word>
const MultiplyAlgorithm<Word>& bkt_algorithm() {
    static const BKTAlgorithm<Word> algorithm;
    return algorithm;
}

template const MultiplyAlgorithm<c32i>& bkt_algorithm<c32i>();
template const MultiplyAlgorithm<c64i>& bkt_algorithm<c64i>();

} // namespace zvp
