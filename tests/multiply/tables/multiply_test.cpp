#include "multiply/tables/multiply.h"

#include "app/failure/exceptions.h"
#include "multiply/algorithms/products.h"
#include "multiply/contract/multiply_tables.h"
#include "multiply/contract/range_trimming.h"
#include "multiply/tables/algorithm_lists.h"
#include "support/heap_calls.h"
#include "support/seed.h"

#include <algorithm>
#include <memory>
#include <string>

namespace {

using namespace zvp;

/// Scratch and tables for every product of at most `length` words.
template <class Word>
struct Session {
    explicit Session(std::size_t length) : M(algorithm_table<Word>().mSBsize(length, 1, true)) {
        algorithm_table<Word>().ensure_tables(tables, length);
        table_memory = std::make_unique<test::GuardedArea>(tables.bytes());
        tables.place(table_memory->data);
        pars = {{}, nullptr, &tables, M.data, M.bytes};
    }

    bool intact() const { return M.intact() && table_memory->intact(); }

    test::GuardedArea M;
    MultiplyTables tables;
    std::unique_ptr<test::GuardedArea> table_memory;
    MultiplyParameters pars;
};

template <class Word>
class Products : public testing::Test {
protected:
    /// What the algorithm of a product of `length` words may leave out of a range, as carries from below.
    static unsigned long left_out(std::size_t length) {
        return std::string(algorithm_table<Word>().get_algorithm(length).id) == "HNT" ? 2 : 0;
    }

    /// The most words of a product that the tables' last row takes, within reach of a test.
    const std::size_t most = std::min<std::size_t>(algorithm_table<Word>().rows.back().limit, 400);

    void expect_range(const std::vector<Word>& A, const std::vector<Word>& B, const std::vector<Word>& product,
                      std::size_t s, std::size_t e) {
        SCOPED_TRACE(std::to_string(A.size()) + " by " + std::to_string(B.size()) + " words, words " + std::to_string(s)
                     + " to " + std::to_string(e));
        const auto trimmed = trim_range(ProductRange<Word>{s, e, A.data(), A.size(), B.data(), B.size()});
        const unsigned long cut_operands = (s > A.size()) + (s > B.size());
        const unsigned long carries = s > 0 ? left_out(trimmed.AL + trimmed.BL) : 0;
        std::vector<Word> T(e - s);
        mul(pars, T.data(), s, e, A.data(), A.size(), B.data(), B.size());
        EXPECT_LE(test::shortfall(test::slice(product, s, e), T), cut_operands + carries);
    }

    void expect_square_range(const std::vector<Word>& A, const std::vector<Word>& square, std::size_t s,
                             std::size_t e) {
        SCOPED_TRACE("square of " + std::to_string(A.size()) + " words, words " + std::to_string(s) + " to "
                     + std::to_string(e));
        std::vector<Word> T(e - s);
        sqr(pars, T.data(), s, e, A.data(), A.size());
        const auto trimmed = trim_range(SquareRange<Word>{s, e, A.data(), A.size()});
        const unsigned long carries = s > 0 ? left_out(2 * trimmed.AL) : 0;
        EXPECT_LE(test::shortfall(test::slice(square, s, e), T), carries + (s > A.size() ? 2 : 0));
    }

    std::mt19937_64 random{test::seed()};
    const Session<Word> session{most};
    MultiplyParameters pars = session.pars;
};

using Kinds = testing::Types<c32i, c64i>;
TYPED_TEST_SUITE(Products, Kinds);

TYPED_TEST(Products, WholeProductsAreExact) {
    SCOPED_TRACE(test::seed_trace());
    for (int round = 0; round < 200; ++round) {
        const std::size_t n = this->random() % (this->most + 1);
        const std::size_t AL = this->random() % (n + 1);
        const auto A = test::random_words<TypeParam>(this->random, AL);
        const auto B = test::random_words<TypeParam>(this->random, n - AL);
        std::vector<TypeParam> T(n, 5);
        mul(this->pars, T.data(), A.data(), AL, B.data(), n - AL);
        EXPECT_EQ(T, test::exact_product(A, B)) << AL << " by " << n - AL << " words";
    }
    EXPECT_TRUE(this->session.intact());
}

TYPED_TEST(Products, EveryRangeIsExactButForDroppedCarries) {
    SCOPED_TRACE(test::seed_trace());
    const std::size_t shapes[][2] = {{1, 1}, {2, 1}, {3, 3}, {7, 2}, {2, 7}, {9, 8}, {20, 5}, {15, 15}, {0, 4}, {4, 0}};
    for (const auto& [AL, BL] : shapes) {
        for (const bool ones : {true, false}) {
            auto A = test::random_words<TypeParam>(this->random, AL);
            auto B = test::random_words<TypeParam>(this->random, BL);
            if (ones) std::fill(A.begin(), A.end(), ~TypeParam{0}), std::fill(B.begin(), B.end(), ~TypeParam{0});
            const auto product = test::exact_product(A, B);
            const auto square = test::exact_product(A, A);
            for (std::size_t s = 0; s < AL + BL; ++s)
                for (std::size_t e = s + 1; e <= AL + BL; ++e) this->expect_range(A, B, product, s, e);
            for (std::size_t s = 0; s < 2 * AL; ++s)
                for (std::size_t e = s + 1; e <= 2 * AL; ++e) this->expect_square_range(A, square, s, e);
        }
    }
    EXPECT_TRUE(this->session.intact());
}

TYPED_TEST(Products, TheAlgorithmIsChosenForTheTrimmedOperands) {
    using Word = TypeParam;
    SCOPED_TRACE(test::seed_trace());
    const std::size_t L = std::min<std::size_t>(algorithm_table<Word>().rows.back().limit, 1'000'000);
    const Session<Word> all(L);
    this->pars = all.pars; // not enough for A * B as a whole, nor is any algorithm of a table that ends before that
    const auto A = test::random_words<Word>(this->random, L);
    const auto B = test::random_words<Word>(this->random, L / 2);
    const auto product = test::exact_product(A, B);
    const auto square = test::exact_product(A, A);
    this->expect_range(A, B, product, 0, L / 2);            // low words
    this->expect_range(B, A, product, A.size(), L + L / 2); // high words
    this->expect_square_range(A, square, 0, L / 2);
    this->expect_square_range(A, square, 2 * L - L / 2, 2 * L);
    EXPECT_TRUE(all.intact());
}

/// n words of ones, but for one bit, or a bit and a word: products of such are runs of ones and zeros through which carries
/// run far.
template <class Word>
std::vector<Word> carrying_words(std::mt19937_64& random, std::size_t n) {
    const bool ones = random() % 2;
    std::vector<Word> words(n, ones ? ~Word{0} : Word{0});
    words[random() % n] ^= Word{1} << random() % word_bits<Word>;
    if (!ones) words[n - 1] = Word{1} << random() % word_bits<Word>;
    return words;
}

TYPED_TEST(Products, RangesOfLongProductsMissNoMoreThanTwoCarries) {
    using Word = TypeParam;
    SCOPED_TRACE(test::seed_trace());
    const auto& rows = algorithm_table<Word>().rows;
    const std::size_t n = rows[1].limit / 2 + 1;
    const Session<Word> all(2 * n);
    this->pars = all.pars;
    for (int round = 0; round < 6; ++round) {
        const auto A = carrying_words<Word>(this->random, n);
        const auto B = carrying_words<Word>(this->random, n);
        const auto product = test::exact_product(A, B);
        this->expect_range(A, B, product, 1 + this->random() % n, 2 * n);
        this->expect_range(A, B, product, 0, 2 * n - 1);
        this->expect_square_range(A, test::exact_product(A, A), 1 + this->random() % n, 2 * n);
    }
    EXPECT_TRUE(all.intact());
}

TYPED_TEST(Products, ALengthBeyondTheTableIsTold) {
    const std::uint64_t limit = algorithm_table<TypeParam>().rows.back().limit;
    TypeParam word = 1; // never read
    try {
        mul(this->pars, &word, &word, limit, &word, 1);
        ADD_FAILURE() << "no exception";
    } catch (const LimitExceededException& failure) {
        EXPECT_EQ(failure.function, "AlgorithmTable::get_algorithm()");
        EXPECT_EQ(failure.limit, limit);
        EXPECT_EQ(failure.attempted, limit + 1);
    }
}

TEST(Products, UncheckedOnesAskNeitherTablesNorSize) {
    std::mt19937_64 random(test::seed());
    SCOPED_TRACE(test::seed_trace());
    test::GuardedArea M(algorithm_table<c32i>().mSBsize(200, 1, false));
    const MultiplyParameters pars{{}, nullptr, nullptr, M.data, 0};
    const auto A = test::random_words<c32i>(random, 120);
    const auto B = test::random_words<c32i>(random, 80);
    std::vector<c32i> T(70);
    mul_unchecked(pars, T.data(), 130, 200, A.data(), 120, B.data(), 80);
    EXPECT_LE(test::shortfall(test::slice(test::exact_product(A, B), 130, 200), T), 2u);
    mul_unchecked(pars, T.data(), 0, 70, A.data(), 120, B.data(), 80);
    EXPECT_EQ(T, test::slice(test::exact_product(A, B), 0, 70));
    EXPECT_TRUE(M.intact());
}

#ifndef ZORVANE_SANITIZED
TYPED_TEST(Products, NothingTakesMemoryFromTheHeap) {
    using Word = TypeParam;
    const auto& table = algorithm_table<Word>();
    const auto A = test::random_words<Word>(this->random, this->most / 2);
    std::vector<Word> T(2 * A.size());
    const std::size_t n = T.size();
    const MultiplyParameters& p = this->pars;
    const std::size_t calls = test::heap_calls_of([&] {
        mul(p, T.data(), A.data(), A.size(), A.data(), A.size());
        mul(p, T.data(), 3, n - 2, A.data(), A.size(), A.data(), A.size());
        sqr(p, T.data(), 3, n - 2, A.data(), A.size());
        for (const auto& row : table.rows) {
            TransformObject object;
            const std::size_t length = std::min<std::size_t>(row.limit, n);
            const Transform& transform = row.algorithm->params(object, length, 1);
            std::byte* const scratch = p.M + transform.transform_bytes;
            transform.sqr_r_x(p, scratch, T.data(), 0, length, p.M, A.data(), length / 2);
            table.mSBsize(length, 1, true);
        }
    });
    EXPECT_EQ(calls, 0u);
}
#endif

} // namespace
