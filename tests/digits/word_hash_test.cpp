#include "digits/hash/word_hash.h"

#include "digits/gmp_value.h"
#include "digits/supported_kernels.h"
#include "parallel/tasks/push_pool.h"
#include "support/seed.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>

namespace {

using namespace zvp;

constexpr std::uint64_t unreduced = ~std::uint64_t{0};

class WordKernelTest : public testing::TestWithParam<platform::KernelSet> {};

TEST_P(WordKernelTest, RowsOfEveryContentHashAsGmpDivides) {
    const DigitKernels& kernels = digit_kernels(GetParam());
    EXPECT_EQ(kernels.set, GetParam());
    std::mt19937_64 random(test::seed());
    for (const std::size_t rows : {0, 1, 2, 3, 7, 60, 61, 62, 200}) {
        const std::size_t n = rows * kernels.row_words;
        for (int kind = 0; kind < 4; ++kind) { // zeros, ones, and two mixtures
            std::vector<std::uint32_t> words = test::random_words<std::uint32_t>(random, n + 16);
            auto* const aligned = words.data() + (0 - reinterpret_cast<std::uintptr_t>(words.data())) % 64 / 4;
            if (kind < 2) std::fill_n(aligned, n, kind == 0 ? 0 : ~std::uint32_t{0});
            SCOPED_TRACE("rows " + std::to_string(rows) + " kind " + std::to_string(kind) + "; " + test::seed_trace());
            EXPECT_EQ(kernels.hash_rows(reinterpret_cast<const std::byte*>(aligned), rows),
                      test::hashed_words(0, aligned, n));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(EverySet, WordKernelTest, testing::ValuesIn(test::supported_kernel_sets()),
                         [](const auto& set) { return test::name_of(set.param); });

/// Arrays at every place in a cache line, lengths around the vectors, rows and the least vectorised length.
template <class Word>
void expect_gmp_hashes(std::initializer_list<std::size_t> lengths) {
    std::mt19937_64 random(test::seed());
    const std::vector<Word> words = test::random_words<Word>(random, 700);
    for (std::size_t offset = 0; offset < 64 / sizeof(Word); ++offset)
        for (const std::size_t n : lengths)
            for (const std::uint64_t h : {std::uint64_t{0}, unreduced}) {
                const Word* const part = words.data() + offset;
                ASSERT_EQ(hash_words(h, part, n), test::hashed_words(h, part, n))
                    << "offset " << offset << " n " << n << " h " << h << "; " << test::seed_trace();
            }
}

TEST(WordHash, ArraysAtEveryAlignment) {
    expect_gmp_hashes<std::uint32_t>({0, 1, 2, 3, 5, 62, 63, 64, 65, 79, 80, 81, 95, 96, 127, 128, 129, 255, 257, 600});
    expect_gmp_hashes<std::uint64_t>({0, 1, 2, 31, 32, 33, 40, 47, 63, 64, 65, 127, 128, 129, 600});
}

TEST(WordHash, SplittingGivesTheSame) {
    std::mt19937_64 random(test::seed());
    const std::vector<std::uint32_t> words = test::random_words<std::uint32_t>(random, 300);
    const std::uint64_t whole = hash_words(unreduced, words.data(), words.size());
    for (std::size_t split = 0; split <= words.size(); ++split) {
        const std::size_t above = words.size() - split;
        EXPECT_EQ(hash_words(hash_words(unreduced, words.data() + split, above), words.data(), split), whole) << split;
        const std::uint64_t top =
            mul_mod(hash_words(unreduced, words.data() + split, above), pow_word(static_cast<std::int64_t>(split)));
        EXPECT_EQ(add_mod(top, hash_words(0, words.data(), split)), whole) << split;
    }
}

/// Runs on threads, and counts what it is asked for.
class CountingFramework final : public ParallelFramework {
public:
    void run_in_parallel(BasicAction& action, std::uint32_t low, std::uint32_t high) override {
        tasks += high - low;
        pool.run_in_parallel(action, low, high);
    }
    void run_in_parallel(BasicAction& first, BasicAction& second) override { pool.run_in_parallel(first, second); }

    std::uint32_t tasks = 0;

private:
    PushPool pool{{}, [](std::uint32_t) {}};
};

TEST(WordHash, TasksGiveTheHashOfOneThread) {
    struct Case {
        std::size_t n;
        std::uint32_t tasks, expected_tasks; // 0: not by the framework
    };
    std::mt19937_64 random(test::seed());
    const std::vector<std::uint32_t> words = test::random_words<std::uint32_t>(random, 1'700'001);
    CountingFramework framework;
    for (const Case& c :
         {Case{9'999, 2, 0}, Case{10'000, 2, 0}, Case{10'001, 1, 0}, Case{10'001, 2, 2}, Case{20'000, 2, 2},
          Case{20'001, 2, 2}, Case{29'999, 3, 3}, Case{30'001, 100, 4}, Case{1'700'001, 2, 2}, Case{1'700'001, 3, 3},
          Case{1'700'001, 64, 64}, Case{1'700'001, 100, 64}, Case{1'700'001, 0, 0}}) {
        SCOPED_TRACE("n " + std::to_string(c.n) + " tasks " + std::to_string(c.tasks) + "; " + test::seed_trace());
        framework.tasks = 0;
        const std::uint64_t expected = test::hashed_words(unreduced, words.data(), c.n);
        EXPECT_EQ(hash_words_parallel(unreduced, words.data(), c.n, &framework, c.tasks), expected);
        EXPECT_EQ(framework.tasks, c.expected_tasks);
        EXPECT_EQ(hash_words_parallel(unreduced, words.data(), c.n, nullptr, c.tasks), expected);
    }
}

TEST(WordHash, LongWordsGoParallelByTheirHalves) {
    std::mt19937_64 random(test::seed());
    const std::vector<std::uint64_t> words = test::random_words<std::uint64_t>(random, 15'001);
    CountingFramework framework;
    EXPECT_EQ(hash_words_parallel(unreduced, words.data(), words.size(), &framework, 3),
              test::hashed_words(unreduced, words.data(), words.size()));
    EXPECT_EQ(framework.tasks, 3u);
}

} // namespace
