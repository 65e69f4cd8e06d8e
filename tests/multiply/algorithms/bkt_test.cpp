#include "multiply/algorithms/products.h"

#include "app/failure/exceptions.h"
#include "multiply/algorithms/bkt_algorithm.h"
#include "multiply/algorithms/bkt_transform.h"
#include "multiply/contract/idle_transform.h"
#include "multiply/contract/multiply_tables.h"
#include "multiply/contract/transform_algorithm.h"
#include "support/seed.h"

namespace {

using namespace zvp;
using test::GuardedArea;

/// The operations that transforms share, on BKT's forms.
template <class Word>
class BKTByForms final : public TransformAlgorithm<Word> {
public:
    BKTByForms() : TransformAlgorithm<Word>("BKT", "", "", "", 65536) {}
    void ensure_tables(MultiplyTables&, std::uint64_t) const override {}
    TransformSizes sizes(std::uint64_t length, std::uint32_t tds) const override {
        return bkt_algorithm<Word>().sizes(length, tds);
    }
    const Transform& params(TransformObject& object, std::uint64_t length, std::uint32_t tds) const override {
        return bkt_algorithm<Word>().params(object, length, tds);
    }
};

template <class Word>
class BKT : public testing::Test {
protected:
    static constexpr std::size_t most_words = 6400 / word_bits<Word>;

    /// All words and some range of A * B and, if the lengths are the same, of A^2.
    void expect_products(const MultiplyAlgorithm<Word>& algorithm, std::size_t AL, std::size_t BL,
                         unsigned long most_short) {
        const std::vector<Word> A = test::random_words<Word>(random, AL);
        const std::vector<Word> B = test::random_words<Word>(random, BL);
        expect_words(algorithm, test::exact_product(A, B), most_short, [&](const auto& pars, Word* T, auto s, auto e) {
            algorithm.mul(pars, T, s, e, A.data(), AL, B.data(), BL);
        });
        if (AL != BL) return;
        expect_words(algorithm, test::exact_product(A, A), most_short,
                     [&](const auto& pars, Word* T, auto s, auto e) { algorithm.sqr(pars, T, s, e, A.data(), AL); });
    }

    /// make(pars, T, s, e) runs with exactly the memory that the algorithm asks for.
    template <class Make>
    void expect_words(const MultiplyAlgorithm<Word>& algorithm, const std::vector<Word>& exact,
                      unsigned long most_short, Make&& make) {
        const std::size_t n = exact.size();
        GuardedArea M(algorithm.total(n, 1));
        const MultiplyParameters pars{{}, nullptr, &tables, M.data, M.bytes};
        GuardedArea whole(n * sizeof(Word));
        make(pars, whole.words<Word>(), std::size_t{0}, n);
        EXPECT_EQ(whole.copy<Word>(), exact);

        const std::size_t s = random() % n;
        const std::size_t e = s + 1 + random() % (n - s);
        GuardedArea part((e - s) * sizeof(Word));
        make(pars, part.words<Word>(), s, e);
        EXPECT_LE(test::shortfall(test::slice(exact, s, e), part.copy<Word>()), most_short) << s << " " << e;
        EXPECT_TRUE(whole.intact() && part.intact() && M.intact());
    }

    std::mt19937_64 random{test::seed()};
    MultiplyTables tables;
};

using Kinds = testing::Types<c32i, c64i>;
TYPED_TEST_SUITE(BKT, Kinds);

TYPED_TEST(BKT, EverySplitOfALengthFitsItsMemory) {
    SCOPED_TRACE(test::seed_trace());
    const BKTByForms<TypeParam> by_forms;
    for (const std::size_t n : {1, 2, 3, 13, 14, 15, 26, 27, 28, 30, 56, 57, 99, 100, 199, 200}) {
        if (n > this->most_words) continue;
        for (std::size_t BL = 0; BL <= n; ++BL) {
            SCOPED_TRACE(std::to_string(n - BL) + " by " + std::to_string(BL) + " words");
            this->expect_products(bkt_algorithm<TypeParam>(), n - BL, BL, 2);
            this->expect_products(by_forms, n - BL, BL, 0);
        }
    }
}

TYPED_TEST(BKT, ASmallBufferIsRefusedUntouched) {
    const auto& algorithm = bkt_algorithm<TypeParam>();
    const std::uint64_t needed = algorithm.total(20, 1);
    GuardedArea M(0);
    const MultiplyParameters pars{{}, nullptr, nullptr, M.data, needed - 1};
    const std::vector<TypeParam> A(10, 1);
    std::vector<TypeParam> T(20, 7);
    for (const bool square : {false, true}) {
        try {
            square ? algorithm.sqr(pars, T.data(), A.data(), 10)
                   : algorithm.mul(pars, T.data(), A.data(), 10, A.data(), 10);
            ADD_FAILURE() << "no exception";
        } catch (const BufferTooSmallException& failure) {
            EXPECT_EQ(failure.buffer_size, needed - 1);
            EXPECT_EQ(failure.required_size, needed);
        }
    }
    EXPECT_EQ(T, std::vector<TypeParam>(20, 7));
    EXPECT_TRUE(M.intact());
}

/// A transform with its areas, each exactly as large as it says.
template <class Word>
struct Areas {
    explicit Areas(std::size_t n)
        : transform(n * (sizeof(Word) / sizeof(c32i))),
          M(transform.scratch_bytes),
          X(transform.transform_bytes),
          Y(transform.transform_bytes),
          T(n * sizeof(Word)) {}

    std::vector<Word> product(GuardedArea& a, const GuardedArea& b) {
        transform.inverse_fmul(pars, M.data, a.data, b.data, T.template words<Word>(), 0, T.bytes / sizeof(Word));
        return T.template copy<Word>();
    }

    bool intact() const { return M.intact() && X.intact() && Y.intact() && T.intact(); }

    MultiplyParameters pars;
    BKTTransform transform;
    GuardedArea M, X, Y, T;
};

TYPED_TEST(BKT, FormsSurviveTheOperationsThatPromiseIt) {
    using Word = TypeParam;
    SCOPED_TRACE(test::seed_trace());
    constexpr std::size_t AL = 31, BL = 17, n = AL + BL;
    Areas<Word> areas(2 * AL);
    const auto& [pars, transform, M, X, Y, T] = areas;
    const std::vector<Word> A = test::random_words<Word>(this->random, AL);
    const std::vector<Word> B = test::random_words<Word>(this->random, BL);
    const std::vector<Word> AB = test::slice(test::exact_product(A, B), 0, 2 * AL);
    const std::vector<Word> AA = test::exact_product(A, A);
    Word* const t = areas.T.template words<Word>();

    transform.mul_rr_xf(pars, M.data, t, 0, n, X.data, A.data(), AL, Y.data, B.data(), BL);
    EXPECT_EQ(test::slice(areas.T.template copy<Word>(), 0, n), test::slice(AB, 0, n));
    transform.mul_rf_xf(pars, M.data, t, 3, n, X.data, A.data(), AL, Y.data);
    EXPECT_EQ(test::slice(areas.T.template copy<Word>(), 0, n - 3), test::slice(AB, 3, n));
    transform.sqr_rx_xf(pars, M.data, t, 0, 2 * AL, Y.data, X.data, A.data(), AL);
    EXPECT_EQ(areas.T.template copy<Word>(), AA);
    transform.forward(pars, M.data, Y.data, B.data(), BL);
    EXPECT_EQ(areas.product(areas.Y, X), AB) << "with the form that sqr_rx_xf left, and zeros above the product";
    transform.sqr_r_x(pars, M.data, t, 5, 2 * AL, X.data, A.data(), AL);
    EXPECT_EQ(test::slice(areas.T.template copy<Word>(), 0, 2 * AL - 5), test::slice(AA, 5, 2 * AL));
    EXPECT_TRUE(areas.intact());
}

TYPED_TEST(BKT, OperandsAsLongAsTheTransformGiveExactWords) { // where a cyclic transform would fold the product
    using Word = TypeParam;
    SCOPED_TRACE(test::seed_trace());
    for (const std::size_t n : {1, 13, 14, 15, 40, 100}) {
        Areas<Word> areas(n);
        const std::vector<Word> A = test::random_words<Word>(this->random, n);
        const std::vector<Word> B = test::random_words<Word>(this->random, n);
        areas.transform.forward(areas.pars, areas.M.data, areas.X.data, A.data(), n);
        areas.transform.forward(areas.pars, areas.M.data, areas.Y.data, B.data(), n);
        EXPECT_EQ(areas.product(areas.X, areas.Y), test::slice(test::exact_product(A, B), 0, n));
        Word* const t = areas.T.template words<Word>();
        areas.transform.inverse_fsqr(areas.pars, areas.M.data, areas.Y.data, areas.Y.data, t, n / 2, n);
        EXPECT_EQ(test::slice(areas.T.template copy<Word>(), 0, n - n / 2),
                  test::slice(test::exact_product(B, B), n / 2, n));
        EXPECT_TRUE(areas.intact());
    }
}

TYPED_TEST(BKT, ZeroLengthsAreZeroProducts) {
    using Word = TypeParam;
    Areas<Word> areas(8);
    const std::vector<Word> A(5, ~Word{0});
    areas.transform.forward(areas.pars, areas.M.data, areas.X.data, A.data(), 5);
    areas.transform.forward(areas.pars, areas.M.data, areas.Y.data, A.data(), 0);
    EXPECT_EQ(areas.product(areas.Y, areas.X), std::vector<Word>(8));
    std::memset(areas.T.data, 1, areas.T.bytes);
    Word* const t = areas.T.template words<Word>();
    areas.transform.inverse_fsqr(areas.pars, areas.M.data, areas.X.data, areas.Y.data, t, 0, 8);
    EXPECT_EQ(areas.T.template copy<Word>(), std::vector<Word>(8));
    EXPECT_TRUE(areas.intact());
}

TYPED_TEST(BKT, WhatExceedsTheCapacityIsRefused) {
    using Word = TypeParam;
    Areas<Word> areas(10);
    const std::vector<Word> A(11, 3);
    const auto refused = [&](auto&& action) {
        try {
            action();
            return std::string("nothing");
        } catch (const ConvolutionTooSmallException& failure) {
            EXPECT_EQ(failure.convolution_size, 10 * word_bits<Word>);
            EXPECT_EQ(failure.requested_size, 11 * word_bits<Word>);
            return failure.function + ": " + failure.message;
        }
    };
    const std::string text = "BKT: Convolution length is too small.";
    std::byte* const M = areas.M.data;
    std::byte* const X = areas.X.data;
    Word* const t = areas.T.template words<Word>();
    EXPECT_EQ(refused([&] { areas.transform.forward(areas.pars, M, X, A.data(), 11); }), text);
    areas.transform.forward(areas.pars, M, X, A.data(), 10);
    EXPECT_EQ(refused([&] { areas.transform.inverse_fsqr(areas.pars, M, X, X, t, 5, 11); }), text);
    EXPECT_EQ(refused([&] { areas.transform.inverse_fmul(areas.pars, M, X, X, t, 5, 11); }), text);
}

TEST(BKTTransform, FormsGoTogetherByClassAndLength) {
    test::IdleTransform other;
    other.capacity_bits = 320;
    EXPECT_TRUE(BKTTransform(10).compatible(BKTTransform(10)));
    EXPECT_FALSE(BKTTransform(10).compatible(BKTTransform(11)));
    EXPECT_FALSE(BKTTransform(10).compatible(other));
}

} // namespace
