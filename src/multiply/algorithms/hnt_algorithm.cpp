#include "multiply/algorithms/hnt_algorithm.h"

#include "multiply/algorithms/hnt_transform.h"
#include "multiply/contract/multiply_tables.h"
#include "multiply/contract/transform_algorithm.h"

namespace zvp {

namespace {

template <class Word>
class HNTAlgorithm final : public TransformAlgorithm<Word> {
public:
    HNTAlgorithm() : TransformAlgorithm<Word>(HNTTransform::id, "Hybrid NTT", "HNTs", "original", hybrid_max_bits) {}

    /// The rings of every row up to that of the length: a plan that covers a length covers all below it.
    void ensure_tables(MultiplyTables& tables, std::uint64_t words) const override {
        const std::uint64_t capacity = hybrid_row(bits_of(words)).capacity_bits();
        tables.template grow<FftTables>(capacity).ensure_rings(largest_hybrid_ring_bits(bits_of(words)));
    }

    TransformSizes sizes(std::uint64_t words, std::uint32_t tds) const override {
        const HybridSize size(hybrid_row(bits_of(words)), tds);
        return {size.transform_bytes, size.scratch_bytes};
    }

    ProductBounds bounds(std::uint64_t above, std::uint64_t words, std::uint32_t tds) const override {
        ProductBounds all;
        for_hybrid_rows(bits_of(above) + 1, bits_of(words), [&](const HybridRow& row) {
            const HybridSize size(row, tds);
            all.include(TransformSizes{size.transform_bytes, size.scratch_bytes});
        });
        return all;
    }

    const Transform& params(TransformObject& object, std::uint64_t words, std::uint32_t tds) const override {
        return object.emplace<HNTTransform>(bits_of(words), tds);
    }

private:
    static std::uint64_t bits_of(std::uint64_t words) { return words * word_bits<Word>; }
};

} // namespace

template <class Word>
const MultiplyAlgorithm<Word>& hnt_algorithm() {
    static const HNTAlgorithm<Word> algorithm;
    return algorithm;
}

template const MultiplyAlgorithm<c32i>& hnt_algorithm<c32i>();
template const MultiplyAlgorithm<c64i>& hnt_algorithm<c64i>();

} // namespace zvp
