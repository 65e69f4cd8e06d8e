// What a plan reserves for "every product up to here" against what each of those products asks for.

#include "multiply/fft/fft_length.h"
#include "multiply/hybrid/hybrid_size.h"
#include "multiply/tables/algorithm_lists.h"
#include "multiply/tables/algorithm_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace zvp {
namespace {

constexpr std::uint32_t task_counts[]{1,  2,  3,  4,  5,  7,   8,   11,  16,  17,  24,  28,   32,   36,
                                      48, 56, 64, 72, 96, 112, 128, 192, 256, 384, 512, 1024, 4096, 65536};

/// The lengths at which any algorithm takes another row, and those just above.
template <class Word>
std::vector<std::uint64_t> telling_lengths() {
    std::vector<std::uint64_t> bits;
    for (std::uint64_t words = 1; words <= 200; ++words) bits.push_back(32 * words);
    for (const AlgorithmRow& row : basic_rows()) bits.push_back(row.limit_bits);
    for (const FftLength& length : fft_lengths()) bits.push_back(length.capacity_bits());
    for (const auto rows : {hybrid_rows(), long_hybrid_rows()})
        for (const HybridRow& row : rows) bits.push_back(row.capacity_bits());
    const std::uint64_t limit = algorithm_table<Word>().rows.back().limit;
    std::vector<std::uint64_t> lengths;
    for (const std::uint64_t b : bits)
        for (const std::uint64_t length : {b / word_bits<Word>, b / word_bits<Word> + 1})
            if (length > 0 && length <= limit) lengths.push_back(length);
    std::sort(lengths.begin(), lengths.end());
    return lengths;
}

template <class Word>
class ProductBoundsTest : public testing::Test {};
using Words = testing::Types<c32i, c64i>;
TYPED_TEST_SUITE(ProductBoundsTest, Words);

TYPED_TEST(ProductBoundsTest, ALongerProductAndMoreTasksAlwaysSuffice) {
    const AlgorithmTableB<TypeParam>& table = algorithm_table<TypeParam>();
    std::vector<ProductBounds> most(std::size(task_counts)); // of all shorter products, by as many tasks
    for (const std::uint64_t length : telling_lengths<TypeParam>()) {
        ProductBounds fewer;
        for (std::size_t i = 0; i < std::size(task_counts); ++i) {
            const std::uint32_t tds = task_counts[i];
            most[i].include(table.get_algorithm(length).sizes(length, tds));
            fewer.include(most[i]);
            std::uint64_t transform_bytes, scratch_bytes;
            const std::uint64_t total = table.mSBsizes(transform_bytes, scratch_bytes, length, tds);
            ASSERT_GE(transform_bytes, fewer.transform_bytes) << length << " words, " << tds << " tasks";
            ASSERT_GE(scratch_bytes, fewer.scratch_bytes) << length << " words, " << tds << " tasks";
            ASSERT_GE(total, fewer.total) << length << " words, " << tds << " tasks";
            ASSERT_EQ(total, table.mSBsize(length, tds, true));
            // Nothing is reserved that no product up to the row's end asks for.
            ASSERT_LE(total, fewer.total) << length << " words, " << tds << " tasks";
        }
    }
}

TYPED_TEST(ProductBoundsTest, OneAndTwoTasksCostHardlyMoreThanTheProductItself) {
    const AlgorithmTableB<TypeParam>& table = algorithm_table<TypeParam>();
    for (const std::uint64_t length : telling_lengths<TypeParam>()) {
        if (length * word_bits<TypeParam> < std::uint64_t{1} << 26) continue;
        for (const std::uint32_t tds : {1U, 2U}) {
            const std::uint64_t itself = table.mSBsize(length, tds, false), all = table.mSBsize(length, tds, true);
            EXPECT_LE(static_cast<double>(all), 1.02 * static_cast<double>(itself)) << length << " words";
        }
    }
}

} // namespace
} // namespace zvp
