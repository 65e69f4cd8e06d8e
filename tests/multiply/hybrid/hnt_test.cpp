// "HNT" as an algorithm of the tables, for both kinds of words.

#include "multiply/algorithms/hnt_algorithm.h"

#include "app/failure/exceptions.h"
#include "multiply/algorithms/hnt_transform.h"
#include "multiply/algorithms/products.h"
#include "multiply/contract/idle_transform.h"
#include "multiply/contract/multiply_tables.h"
#include "multiply/tables/algorithm_lists.h"
#include "multiply/tables/multiply.h"
#include "support/seed.h"

#include <memory>
#include <string>

using namespace zvp;
using test::GuardedArea;

namespace {

template <class Word>
class HNT : public testing::Test {
protected:
    void place_tables() {
        table_memory = std::make_unique<GuardedArea>(tables.bytes());
        tables.place(table_memory->data);
    }
    MultiplyParameters parameters(const GuardedArea& M, std::uint32_t tds = 1) const {
        return {{tds, nullptr}, nullptr, &tables, M.data, M.bytes};
    }

    std::mt19937_64 random{test::seed()};
    const MultiplyAlgorithm<Word>& algorithm = hnt_algorithm<Word>();
    MultiplyTables tables;
    std::unique_ptr<GuardedArea> table_memory;
};

using Kinds = testing::Types<c32i, c64i>;
TYPED_TEST_SUITE(HNT, Kinds);

TYPED_TEST(HNT, EveryLengthFitsItsMemoryAndTables) {
    using Word = TypeParam;
    SCOPED_TRACE(test::seed_trace());
    for (std::size_t length = 0; length < 20000; length += 1 + length / 3) {
        this->algorithm.ensure_tables(this->tables, length);
        this->place_tables();
        for (const std::uint32_t tds : {1U, 5U}) {
            const std::size_t AL = this->random() % (length + 1);
            SCOPED_TRACE(std::to_string(AL) + " of " + std::to_string(length) + " words");
            const auto A = test::random_words<Word>(this->random, AL);
            const auto B = test::random_words<Word>(this->random, length - AL);
            GuardedArea M(this->algorithm.total(length, tds)), T(length * sizeof(Word));
            const MultiplyParameters pars = this->parameters(M, tds);
            this->algorithm.mul(pars, T.words<Word>(), A.data(), AL, B.data(), length - AL);
            EXPECT_TRUE(T.copy<Word>() == test::exact_product(A, B));
            EXPECT_TRUE(T.intact() && M.intact() && this->table_memory->intact());
            const auto half = test::random_words<Word>(this->random, length / 2);
            this->algorithm.sqr(pars, T.words<Word>(), half.data(), half.size());
            EXPECT_TRUE(test::slice(T.copy<Word>(), 0, 2 * half.size()) == test::exact_product(half, half));
            EXPECT_TRUE(T.intact() && M.intact());
        }
    }
}

TYPED_TEST(HNT, TheTablesTurnToItBehindTheFftRow) {
    using Word = TypeParam;
    SCOPED_TRACE(test::seed_trace());
    const auto& table = algorithm_table<Word>();
    const std::size_t length = 14680064 / word_bits<Word> + 1, AL = length / 2;
    EXPECT_STREQ(table.get_algorithm(length - 1).id, "FFT");
    EXPECT_EQ(&table.get_algorithm(length), &this->algorithm);
    EXPECT_EQ(table.rows.back().limit, (std::uint64_t{1} << 38) / word_bits<Word>);
    table.ensure_tables(this->tables, length);
    this->place_tables();
    GuardedArea M(table.mSBsize(length, 1, true));
    const auto A = test::random_words<Word>(this->random, AL), B = test::random_words<Word>(this->random, length - AL);
    std::vector<Word> T(length), S(2 * AL + 2);
    mul(this->parameters(M), T.data(), A.data(), AL, B.data(), length - AL);
    EXPECT_TRUE(T == test::exact_product(A, B));
    sqr(this->parameters(M), T.data(), 0, length, B.data(), length - AL);
    EXPECT_TRUE(T == test::slice(test::exact_product(B, B), 0, length));
    EXPECT_TRUE(M.intact());
}

TYPED_TEST(HNT, BuffersAndTablesAreCheckedBeforeTheFirstWord) {
    using Word = TypeParam;
    const std::uint64_t needed = this->algorithm.total(2000, 3);
    EXPECT_EQ(needed, this->algorithm.sizes(2000, 3).total());
    this->algorithm.ensure_tables(this->tables, 1000);
    GuardedArea M(0);
    const std::vector<Word> A(1000, 1);
    std::vector<Word> T(2000, 7);
    MultiplyParameters pars{{3, nullptr}, nullptr, &this->tables, M.data, needed - 1};
    const auto product = [&] { this->algorithm.mul(pars, T.data(), A.data(), 1000, A.data(), 1000); };
    EXPECT_THROW(product(), LimitExceededException);
    this->place_tables();
    EXPECT_THROW(product(), LimitExceededException);
    this->algorithm.ensure_tables(this->tables, 2000);
    this->place_tables();
    EXPECT_THROW(product(), BufferTooSmallException);
    EXPECT_THROW(this->algorithm.sqr(pars, T.data(), A.data(), 1000), BufferTooSmallException);
    EXPECT_EQ(T, std::vector<Word>(2000, 7));
    EXPECT_TRUE(M.intact());
}

TYPED_TEST(HNT, WhatExceedsTheCapacityIsRefused) {
    using Word = TypeParam;
    this->algorithm.ensure_tables(this->tables, 16);
    this->place_tables();
    TransformObject object;
    const Transform& transform = this->algorithm.params(object, 512 / word_bits<Word>, 1);
    GuardedArea M(transform.scratch_bytes), X(transform.transform_bytes), Y(transform.transform_bytes);
    const MultiplyParameters pars = this->parameters(M);
    const std::size_t most = 512 / word_bits<Word>;
    const std::vector<Word> A(most + 1, 3);
    std::vector<Word> T(most + 1);
    const auto refused = [&](auto&& action) {
        try {
            action();
            return std::string("nothing");
        } catch (const ConvolutionTooSmallException& failure) {
            EXPECT_EQ(failure.convolution_size, 512U);
            EXPECT_EQ(failure.requested_size, 512 + word_bits<Word>);
            return failure.function + ": " + failure.message;
        }
    };
    const std::string text = "HNT: Convolution length is too small.";
    std::byte *const m = M.data, *const x = X.data, *const y = Y.data;
    EXPECT_EQ(refused([&] { transform.forward(pars, m, x, A.data(), most + 1); }), text);
    transform.forward(pars, m, x, A.data(), most);
    EXPECT_EQ(refused([&] { transform.inverse_fsqr(pars, m, y, x, T.data(), 5, most + 1); }), text);
    EXPECT_EQ(refused([&] { transform.inverse_fmul(pars, m, y, x, T.data(), 5, most + 1); }), text);
    EXPECT_EQ(refused([&] { transform.sqr_r_x(pars, m, T.data(), 0, most, x, A.data(), most + 1); }), text);
    EXPECT_EQ(refused([&] { transform.mul_rr_xx(pars, m, T.data(), 0, 4, x, A.data(), 1, y, A.data(), most + 1); }),
              text);
    EXPECT_EQ(refused([&] { transform.mul_rf_xf(pars, m, T.data(), 0, most + 1, x, A.data(), 1, y); }), text);
}

TYPED_TEST(HNT, OperandsOfNoWordsAreZeroInEveryOperation) {
    using Word = TypeParam;
    SCOPED_TRACE(test::seed_trace());
    this->algorithm.ensure_tables(this->tables, 500);
    this->place_tables();
    TransformObject object;
    const Transform& transform = this->algorithm.params(object, 500, 1);
    GuardedArea M(transform.scratch_bytes), X(transform.transform_bytes), Y(transform.transform_bytes);
    const MultiplyParameters pars = this->parameters(M);
    const auto B = test::random_words<Word>(this->random, 500);
    const Word* const none = nullptr;
    std::vector<Word> T;
    std::byte *const m = M.data, *const x = X.data, *const y = Y.data;
    const auto expect_zero = [&](const char* operation, auto&& multiply) {
        T.assign(500, 1);
        EXPECT_NO_THROW(multiply()) << operation;
        EXPECT_TRUE(T == std::vector<Word>(500)) << operation;
    };
    expect_zero("mul_rr_xx", [&] { transform.mul_rr_xx(pars, m, T.data(), 0, 500, x, none, 0, y, B.data(), 500); });
    expect_zero("mul_rf_xf", [&] { transform.mul_rf_xf(pars, m, T.data(), 0, 500, x, none, 0, y); });
    expect_zero("mul_rr_xf", [&] { transform.mul_rr_xf(pars, m, T.data(), 0, 500, x, B.data(), 500, y, none, 0); });
    expect_zero("sqr_r_x", [&] { transform.sqr_r_x(pars, m, T.data(), 0, 500, x, none, 0); });
    expect_zero("sqr_rx_xf", [&] { transform.sqr_rx_xf(pars, m, T.data(), 0, 500, x, y, none, 0); });
}

TEST(HNTTransform, FormsGoTogetherByClassAndRow) {
    test::IdleTransform other;
    other.capacity_bits = 512;
    const HNTTransform one(1, 1);
    EXPECT_TRUE(one.compatible(HNTTransform(512, 8)));
    EXPECT_FALSE(one.compatible(HNTTransform(513, 1)));
    EXPECT_FALSE(one.compatible(other));
    EXPECT_EQ(one.requested_bits, 1U);
    EXPECT_EQ(one.capacity_bits, 512U);
    EXPECT_THROW(HNTTransform(hybrid_max_bits + 1, 1), LimitExceededException);
}

} // namespace
