// Copies, products, shifts, chains of operations, and that nothing takes memory from the heap.
#include "numbers/exact_support.h"
#include "support/heap_calls.h"

#include <algorithm>

namespace {

using namespace test;
using zvp::ExactFloat;
using zvp::ParallelContext;

template <class Word>
class ExactFloatOf : public testing::Test {};
TYPED_TEST_SUITE(ExactFloatOf, WordKinds);

TYPED_TEST(ExactFloatOf, ProductsAreExactOnBothRoutes) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    for (const std::uint32_t tds : {1u, 3u}) {
        WordMultiplier<TypeParam> multiplier(tds);
        for (int round = 0; round < 600; ++round) {
            const std::size_t reach = round % 100 == 0 ? 20'000 : round % 10 == 0 ? 300 : 14;
            const std::size_t a = 1 + random() % reach, b = 1 + random() % reach;
            SCOPED_TRACE(testing::Message() << a << " x " << b << " tds " << tds);
            const ExactNumber<TypeParam> A(random_words<TypeParam>(random, a), -3, random() % 2),
                B(random_words<TypeParam>(random, b), 40, random() % 2);
            ExactNumber<TypeParam> T(a + b), tight(a + b - 1);
            T.f.set_mul(multiplier.pars, A.f, B.f);
            expect_value(T, in_units(A.f, -3) * in_units(B.f, 40), 37);
            EXPECT_EQ(failure_of([&] { tight.f.set_mul(multiplier.pars, A.f, B.f); }),
                      "ExactFloat::set_mul() " + std::to_string(a + b - 1) + " " + std::to_string(a + b));
            EXPECT_TRUE(tight.guards_are_intact());
        }
    }
}

TYPED_TEST(ExactFloatOf, NineteenWordsNeedNoScratchAndTwentyDo) {
    WordMultiplier<TypeParam> multiplier;
    auto pars = multiplier.pars;
    pars.ML = 0;
    const ExactNumber<TypeParam> nine(std::vector<TypeParam>(9, 7), 0, true),
        ten(std::vector<TypeParam>(10, 7), 0, true);
    ExactNumber<TypeParam> T(20);
    EXPECT_EQ(failure_of([&] { T.f.set_mul(pars, nine.f, ten.f); }), "nothing");
    const std::string failure = failure_of([&] { T.f.set_mul(pars, ten.f, ten.f); });
    EXPECT_TRUE(failure != "nothing" && failure.find("ExactFloat") == failure.npos) << failure;
}

TYPED_TEST(ExactFloatOf, ZeroProductsAreWholeZeros) {
    const ExactNumber<TypeParam> zero(0), A({5}, 3, false);
    for (const bool first : {false, true}) {
        ExactNumber<TypeParam> T({9}, 4, true);
        T.f.set_mul({}, first ? zero.f : A.f, first ? A.f : zero.f);
        EXPECT_TRUE(T.f.L == 0 && T.f.exp == 0 && !T.f.sign && T.f.hash == 0);
    }
}

TYPED_TEST(ExactFloatOf, ShiftsMoveTheExponentAndFewBits) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    constexpr std::int64_t w = zvp::word_bits<TypeParam>, unit = -1000;
    for (const std::int64_t e : {-20 * w - 1, -2 * w, -w - 1, -w, -w + 1, std::int64_t{-1}, std::int64_t{0},
                                 std::int64_t{1}, w - 1, w, w + 1, 7 * w, 9 * w + 5}) {
        for (const std::size_t n : {1, 2, 40}) {
            SCOPED_TRACE(testing::Message() << "2^" << e << " " << n << " words");
            const auto words = random_words<TypeParam>(random, n);
            ExactNumber<TypeParam> T(words, -5, n % 2, 3, 1), tight(words, -5, true, 3, 0);
            const mpz_class start = in_units(T.f, unit);
            T.f.mp2({}, e);
            expect_value(T, e < 0 ? mpz_class(start >> -e) : mpz_class(start << e), unit);
            if (e % w == 0) {
                EXPECT_EQ(T.words(), words);
                EXPECT_EQ(T.f.exp, -5 + e / w);
            }
            EXPECT_EQ(failure_of([&] { tight.f.mp2(e); }),
                      "ExactFloat::mp2() " + std::to_string(n + 3) + " " + std::to_string(n + 4));
        }
    }
    ExactNumber<TypeParam> far({1}, 0, true, 0, 1); // exponents whose bits no integer counts
    far.f.mp2(std::numeric_limits<std::int64_t>::min());
    far.f.exp -= std::int64_t{1} << 60;
    far.f.hash = zvp::mul_mod(far.f.hash, zvp::pow_word(-(std::int64_t{1} << 60) % 61 * (w / 32)));
    EXPECT_EQ(far.f.residue({}), zvp::normalize_hash(far.f.hash));
}

TYPED_TEST(ExactFloatOf, CopiesOfIntegersTurnLowZerosIntoExponentAndHeadroom) {
    GuardedWords<TypeParam> words(4);
    zvp::BasicInt<TypeParam> A(words.data(), 4);
    std::fill_n(A.T, 4, TypeParam{0});
    A.T[2] = 6, A.T[3] = 1, A.L = 4;
    const mpz_class value = integer(A.T, 4);
    A.hash = residue_of(value) + (std::uint64_t{1} << 61) - 1;
    ExactNumber<TypeParam> T(4), tight(3);
    T.f.set_BasicInt({}, A);
    expect_value(T, value, 0);
    EXPECT_TRUE(T.f.L == 2 && T.f.exp == 2 && T.f.sign && T.f.Tmin() == 0 && T.f.Tmax() == 4);
    EXPECT_EQ(T.f.hash, A.hash);
    EXPECT_EQ(failure_of([&] { tight.f.set_BasicInt({}, A); }), "ExactFloat::set_BasicInt() 3 4");

    ExactNumber<TypeParam> copy(2), less(1);
    copy.f.set_ExactFloat(T.f);
    expect_value(copy, value, 0);
    EXPECT_EQ(failure_of([&] { less.f.set_ExactFloat(T.f); }), "ExactFloat::set_ExactFloat() 1 2");
    EXPECT_EQ(failure_of([&] { copy.f.set_add({}, T.f, T.f); }), "ExactFloat::set_add() 2 3");
    T.f.set_BasicInt({}, {});
    EXPECT_EQ(T.f.L, 0u);
}

/// After any chain of operations the words and the hash tell the same, and a flipped bit shows.
TYPED_TEST(ExactFloatOf, ChainsKeepTheHashCongruent) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    WordMultiplier<TypeParam> multiplier(2);
    const auto& pars = multiplier.pars;
    constexpr std::int64_t unit = -4096; // products only of numbers that stay above it
    constexpr std::size_t longest = 3000;
    for (int chain = 0; chain < 100; ++chain) {
        ExactNumber<TypeParam> X(4 * longest), Y(4 * longest), Z(4 * longest);
        mpz_class x = 0;
        for (int step = 0; step < 40 && X.f.L < longest; ++step) {
            const ExactNumber<TypeParam> B(random_words<TypeParam>(random, random() % 12),
                                           X.f.exp + static_cast<std::int64_t>(random() % 40) - 20, random() % 2);
            const mpz_class b = in_units(B.f, unit);
            const auto kind = random() % 8;
            const bool near = std::abs(X.f.exp) < 1000;
            SCOPED_TRACE(testing::Message() << "chain " << chain << " step " << step << " kind " << kind);
            if (kind < 4) { // with headroom on both sides
                X.f.T = std::copy_backward(X.f.T, X.f.T + X.f.L, X.f.buffer + 2 * longest + X.f.L);
                X.f.add_ip(pars, B.f);
                x += b;
            } else if (kind == 4) {
                const auto e = static_cast<std::int64_t>(random() % 200) - 100;
                if (X.f.T + X.f.L == X.f.buffer + X.f.capacity) continue;
                X.f.mp2(pars, e);
                x = e < 0 ? mpz_class(x >> -e) : mpz_class(x << e);
            } else if (kind == 5 && near) {
                Y.f.set_ExactFloat(pars, X.f);
                X.f.set_mul(pars, Y.f, B.f);
                x *= b;
                x >>= static_cast<mp_bitcnt_t>(-unit * std::int64_t{zvp::word_bits<TypeParam>});
            } else if (kind == 6 && near && X.f.L < longest / 2) {
                Y.f.set_ExactFloat(X.f);
                X.f.set_mul(pars, Y.f, Y.f);
                x *= x;
                x >>= static_cast<mp_bitcnt_t>(-unit * std::int64_t{zvp::word_bits<TypeParam>});
            } else if (B.f.sign == X.f.sign) {
                Y.f.set_ExactFloat(pars, X.f);
                X.f.set_add(pars, Y.f, B.f);
                x += b;
            }
            expect_value(X, x, unit);
            if (testing::Test::HasFailure()) return;
        }
        if (X.f.L == 0) continue;
        TypeParam& word = X.f.T[random() % X.f.L];
        word ^= TypeParam{1} << random() % zvp::word_bits<TypeParam>;
        EXPECT_NE(X.f.residue(pars), zvp::normalize_hash(X.f.hash));
    }
}

#ifndef ZORVANE_SANITIZED
TYPED_TEST(ExactFloatOf, NoOperationTakesHeapMemory) {
    std::mt19937_64 random(seed());
    WordMultiplier<TypeParam> multiplier(100);
    InOrder framework;
    auto pars = multiplier.pars;
    pars.framework = &framework;
    for (const std::uint32_t tds : {1u, 3u, 100u}) {
        pars.tds = tds;
        for (const std::size_t n : {1, 9, 100, 40'000}) {
            const auto words = random_words<TypeParam>(random, n);
            const ExactNumber<TypeParam> A(words, 0, true), B(words, -1, false), C(words, 1, true);
            ExactNumber<TypeParam> T(2 * n + 8), M(A.words(), 0, true, 4, 4);
            const std::size_t calls = heap_calls_of([&] {
                T.f.set_mul(pars, A.f, B.f);
                T.f.set_ExactFloat(pars, A.f);
                T.f.set_add(pars, A.f, C.f);
                T.f.mp2(pars, 77);
                M.f.add_ip(pars, C.f);
                M.f.add_ip(pars, B.f);
                M.f.add_ip(pars, A.f);
                M.f.residue(pars);
            });
            EXPECT_EQ(calls, 0u) << "n " << n << " tds " << tds;
        }
    }
}
#endif

} // namespace
