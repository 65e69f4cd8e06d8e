#include "multiply/algorithms/fft_transform.h"

#include "app/failure/exceptions.h"
#include "multiply/algorithms/fft_algorithm.h"
#include "multiply/algorithms/products.h"
#include "multiply/contract/idle_transform.h"
#include "multiply/contract/multiply_tables.h"
#include "support/seed.h"

#include <algorithm>
#include <memory>
#include <string>

namespace {

using namespace zvp;
using test::GuardedArea;

template <class Word>
class FFT : public testing::Test {
protected:
    static constexpr std::size_t most_words = 400'000 / word_bits<Word>;

    FFT() {
        fft_algorithm<Word>().ensure_tables(tables, most_words);
        memory = std::make_unique<GuardedArea>(tables.bytes());
        tables.place(memory->data);
    }

    std::vector<Word> operand(std::size_t n) { return test::random_words<Word>(random, n); }

    std::mt19937_64 random{test::seed()};
    MultiplyTables tables;
    std::unique_ptr<GuardedArea> memory;
};

using Kinds = testing::Types<c32i, c64i>;
TYPED_TEST_SUITE(FFT, Kinds);

/// The words at the end of `area`'s memory, which needn't start at a multiple of 64 then.
template <class Word>
Word* place_at_end(GuardedArea& area, const std::vector<Word>& words) {
    Word* const at = reinterpret_cast<Word*>(area.data + area.bytes) - words.size();
    std::copy(words.begin(), words.end(), at);
    return at;
}

TYPED_TEST(FFT, RangesOfProductsAreExactWhereverTheWordsLie) {
    using Word = TypeParam;
    SCOPED_TRACE(test::seed_trace());
    const auto& algorithm = fft_algorithm<Word>();
    for (const std::size_t n : {1UL, 2UL, 41UL, 42UL, 43UL, 201UL, 1000UL, 6401UL, this->most_words})
        for (const std::size_t AL : {std::size_t{1}, n / 2, n - 1}) {
            const std::size_t BL = n - AL;
            const auto A = this->operand(AL), B = this->operand(BL);
            GuardedArea M(algorithm.total(n, 1)), a((AL + 1) * sizeof(Word)), b((BL + 3) * sizeof(Word));
            const Word *const at_a = place_at_end(a, A), *const at_b = place_at_end(b, B);
            const MultiplyParameters pars{{}, nullptr, &this->tables, M.data, M.bytes};
            const auto product = test::exact_product(A, B), square = test::exact_product(A, A);
            for (const std::size_t s : {std::size_t{0}, n / 3, n - 1, n})
                for (const std::size_t e : {s, std::min(s + 1, n), n}) {
                    SCOPED_TRACE(std::to_string(AL) + " by " + std::to_string(BL) + " words, " + std::to_string(s)
                                 + " to " + std::to_string(e));
                    GuardedArea T((e - s) * sizeof(Word));
                    algorithm.mul(pars, T.words<Word>(), s, e, at_a, AL, at_b, BL);
                    EXPECT_EQ(T.copy<Word>(), test::slice(product, s, e));
                    if (e <= 2 * AL && 2 * AL <= n) {
                        algorithm.sqr(pars, T.words<Word>(), s, e, at_a, AL);
                        EXPECT_EQ(T.copy<Word>(), test::slice(square, s, e));
                    }
                    EXPECT_TRUE(T.intact() && M.intact() && a.intact() && b.intact());
                }
        }
}

/// A transform with its areas, each exactly as large as it says.
template <class Word>
struct FormAreas {
    FormAreas(std::uint64_t bits, const MultiplyTables& tables)
        : pars{{}, nullptr, &tables, nullptr, 0},
          transform(bits),
          n(transform.capacity_bits / word_bits<Word>),
          M(transform.scratch_bytes),
          X(transform.transform_bytes),
          Y(transform.transform_bytes),
          T(n * sizeof(Word)) {}

    Word* t() { return T.words<Word>(); }
    bool intact() const { return M.intact() && X.intact() && Y.intact() && T.intact(); }

    MultiplyParameters pars;
    FFTTransform transform;
    std::size_t n;
    GuardedArea M, X, Y, T;
};

template <class Word>
std::vector<Word> folded_product(const std::vector<Word>& A, const std::vector<Word>& B, std::size_t n) {
    test::Integer modulus, product(test::exact_product(A, B));
    mpz_setbit(modulus.value, n * word_bits<Word>);
    mpz_add_ui(modulus.value, modulus.value, 1);
    mpz_mod(product.value, product.value, modulus.value);
    std::vector<Word> words(n + 1);
    mpz_export(words.data(), nullptr, -1, sizeof(Word), 0, 0, product.value);
    words.pop_back();
    return words;
}

TYPED_TEST(FFT, FormsSurviveAndOperandsOfFullLengthFold) {
    using Word = TypeParam;
    SCOPED_TRACE(test::seed_trace());
    for (const std::uint64_t bits : {1344U, 2560U, 7680U, 9728U, 300'000U}) {
        FormAreas<Word> areas(bits, this->tables);
        const auto& [pars, transform, n, M, X, Y, T] = areas;
        const auto A = this->operand(n), B = this->operand(n);
        const auto AB = folded_product(A, B, n), AA = folded_product(A, A, n);
        transform.mul_rr_xf(pars, M.data, areas.t(), 0, n, X.data, A.data(), n, Y.data, B.data(), n);
        EXPECT_EQ(areas.T.template copy<Word>(), AB) << bits;
        transform.mul_rf_xf(pars, M.data, areas.t(), 0, n - 3, X.data, A.data(), n, Y.data);
        EXPECT_EQ(areas.T.template copy<Word>(), AB) << "with the form that mul_rr_xf left; words above stay";
        transform.sqr_rx_xf(pars, M.data, areas.t(), 0, n, Y.data, X.data, A.data(), n);
        EXPECT_EQ(areas.T.template copy<Word>(), AA);
        transform.forward(pars, M.data, Y.data, B.data(), n);
        transform.inverse_fmul(pars, M.data, Y.data, X.data, areas.t(), 0, n);
        EXPECT_EQ(areas.T.template copy<Word>(), AB) << "with the form that sqr_rx_xf left";
        transform.forward(pars, M.data, Y.data, static_cast<const Word*>(nullptr), 0);
        transform.inverse_fmul(pars, M.data, Y.data, X.data, areas.t(), 0, n);
        EXPECT_EQ(areas.T.template copy<Word>(), std::vector<Word>(n));
        EXPECT_TRUE(areas.intact() && this->memory->intact());
    }
}

TYPED_TEST(FFT, WhatExceedsTheCapacityIsRefused) {
    using Word = TypeParam;
    FormAreas<Word> areas(1344, this->tables);
    const std::size_t n = areas.n;
    const std::vector<Word> A(n + 1, 3);
    const auto refused = [&](auto&& action) {
        try {
            action();
            return std::string("nothing");
        } catch (const ConvolutionTooSmallException& failure) {
            EXPECT_EQ(failure.convolution_size, 1344U);
            EXPECT_EQ(failure.requested_size, 1344U + word_bits<Word>);
            return failure.function + ": " + failure.message;
        }
    };
    const std::string text = "FFT: Convolution length is too small.";
    std::byte *const M = areas.M.data, *const X = areas.X.data;
    EXPECT_EQ(refused([&] { areas.transform.forward(areas.pars, M, X, A.data(), n + 1); }), text);
    areas.transform.forward(areas.pars, M, X, A.data(), n);
    EXPECT_EQ(refused([&] { areas.transform.inverse_fsqr(areas.pars, M, X, X, areas.t(), 5, n + 1); }), text);
    EXPECT_EQ(refused([&] { areas.transform.inverse_fmul(areas.pars, M, X, X, areas.t(), 5, n + 1); }), text);
    EXPECT_THROW(fft_algorithm<Word>().sizes((std::uint64_t{1} << 34) / word_bits<Word> + 1, 1),
                 LimitExceededException);
}

TYPED_TEST(FFT, AWrongRootIsFound) {
    using Word = TypeParam;
    SCOPED_TRACE(test::seed_trace());
    const std::size_t n = this->most_words;
    const auto& algorithm = fft_algorithm<Word>();
    const auto A = this->operand(n / 2), B = this->operand(n - n / 2);
    const auto product = test::exact_product(A, B), square = test::exact_product(A, A);
    GuardedArea M(algorithm.total(n, 1));
    const MultiplyParameters pars{{}, nullptr, &this->tables, M.data, M.bytes};
    std::vector<Word> T(n);
    unsigned caught = 0;
    for (int round = 0; round < 200; ++round) {
        std::byte& byte = this->memory->data[this->random() % (this->memory->bytes / 8) * 8 + 6];
        byte ^= std::byte{4}; // a high bit of the mantissa
        const bool squared = round % 2;
        try {
            squared ? algorithm.sqr(pars, T.data(), A.data(), A.size())
                    : algorithm.mul(pars, T.data(), A.data(), A.size(), B.data(), B.size());
            EXPECT_TRUE(T == (squared ? square : product));
        } catch (const ConvolutionFailedException& failure) {
            EXPECT_EQ(failure.message, "Modular redundancy check failed.");
            ++caught;
        }
        byte ^= std::byte{4};
    }
    EXPECT_GT(caught, 3U) << "or no flip struck a root in use";
}

TEST(FFTTransform, FormsGoTogetherByClassAndLength) {
    test::IdleTransform other;
    other.capacity_bits = 2688;
    EXPECT_TRUE(FFTTransform(1345).compatible(FFTTransform(2688)));
    EXPECT_FALSE(FFTTransform(2688).compatible(FFTTransform(2689)));
    EXPECT_FALSE(FFTTransform(2688).compatible(other));
}

} // namespace
