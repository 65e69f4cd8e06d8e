#include "numbers/big_float_support.h"

#include <cmath>
#include <limits>
#include <unistd.h>

namespace {

using namespace test;
using zvp::ParallelContext;

TEST(BigFloatStrip, KeepsTheResidualWords) {
    const struct {
        Words A, expected;
        std::size_t low;
        const char* what;
    } cases[] = {
        {{1, 2, ones, ones}, {1, 2}, 0, "ones at the top"},
        {{0, 0, 5, 7}, {5, 7}, 2, "zeros at the bottom"},
        {{0, 9, ones}, {9}, 1, "both"},
        {{0, ones, ones, ones}, {ones}, 1, "one word stands for a run"},
        {{ones}, {ones}, 0, "a single word of ones"},
        {{6, 0, ones}, {6, 0}, 0, "a zero word below the ones is part of the residual"},
    };
    for (const auto& c : cases) {
        Number T(c.A, -50);
        T.f.strip_ip({});
        EXPECT_EQ(words_of(T.f), c.expected) << c.what;
        EXPECT_EQ(T.f.exp, -50 + static_cast<std::int64_t>(c.low)) << c.what;
        EXPECT_EQ(T.f.T, T.f.buffer + c.low) << c.what;
    }
    Number loose({3, 0, 0}, 1); // a top that isn't normalised
    loose.f.strip_ip({});
    EXPECT_EQ(words_of(loose.f), (Words{3}));
    Number nothing({0, 0}, 1, false);
    nothing.f.strip_ip({});
    EXPECT_TRUE(nothing.f.L == 0 && nothing.f.exp == 0 && nothing.f.sign);
}

/// complement_ip() must turn W^top - r into r, whether strip_ip() ran before or not, for residuals of any shape.
TEST(BigFloatComplement, TurnsOneMinusRIntoR) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    const auto framework = zvp::make_framework_config("pushpool")->make_framework();
    for (int round = 0; round < 1000; ++round) {
        const bool large = round < 20;
        const ParallelContext ctx{task_counts[round % 5], framework.get()};
        const std::size_t n = large ? 100'000 + random() % 1000 : 1 + random() % 40;
        const std::size_t top = n + random() % (large ? 90'000 : 5);
        Words r = random_words(random, n);
        if (random() % 4 == 0) r.back() = ones; // a zero word in 1 - r
        mpz_class x = (mpz_class(1) << 32 * top) - integer(r.data(), n);
        if (x == 0) continue;
        Words words(top);
        mpz_export(words.data(), nullptr, -1, 4, 0, 0, x.get_mpz_t());
        while (words.back() == 0) words.pop_back();
        if (words.size() < top) continue; // r above W^top - W^(top-1): not just below a power

        Number T(words, -77, random() % 2);
        const bool sign = T.f.sign;
        if (round % 2) {
            T.f.strip_ip(ctx);
            EXPECT_EQ(T.f.top(), -77 + static_cast<std::int64_t>(n)) << "what the callers' bounds look at";
        }
        T.f.complement_ip(ctx);
        expect_sound(T);
        EXPECT_TRUE(in_units(T.f, -77) == integer(r.data(), n)) << "r " << n << " top " << top;
        EXPECT_EQ(T.f.sign, sign);
    }
    Number zero(Words{}, 0);
    zero.f.complement_ip({});
    EXPECT_EQ(zero.f.L, 0u);
}

TEST(BigFloatTruncate, DropsTheTopAndTheZerosBelow) {
    const struct {
        std::int64_t pos;
        Words expected;
    } cases[] = {{9, {1, 2, 0, 0, 5}}, {5, {1, 2, 0, 0, 5}}, {4, {1, 2}}, {3, {1, 2}}, {2, {1, 2}}, {1, {1}},
                 {0, Words{}},         {-7, Words{}}};
    for (const auto& c : cases) {
        Number T({1, 2, 0, 0, 5}, 0, false);
        T.f.truncate_at(c.pos, {});
        EXPECT_EQ(words_of(T.f), c.expected) << c.pos;
        EXPECT_EQ(T.f.sign, c.expected.empty()) << c.pos;
    }
    Number low_zeros({0, 0, 8}, -2);
    low_zeros.f.truncate_at(0, {});
    EXPECT_TRUE(low_zeros.f.L == 0 && low_zeros.f.exp == 0 && low_zeros.f.sign);
}

TEST(BigFloatWindow, HoldsZerosWhereTheNumberHasNone) {
    const Number A({1, 2, 3}, -1);
    Words window(7, 99);
    A.f.read_window(-3, 7, window.data());
    EXPECT_EQ(window, (Words{0, 0, 1, 2, 3, 0, 0}));
    for (std::int64_t pos = -3; pos < 4; ++pos) EXPECT_EQ(A.f.get_word(pos), window[static_cast<std::size_t>(pos + 3)]);
}

TEST(BigFloatDouble, IsTheWordFormOfTheDouble) {
    const struct {
        double x;
        Words T;
        std::int64_t exp;
    } cases[] = {
        {1.0, {0, 0, 1}, -2},
        {-1.0, {0, 0, 1}, -2},
        {0x1p52, {0, 0x10'0000}, 0},
        {0x1.8000000000001p52, {1, 0x18'0000}, 0},
        {0x1p-1022, {0, 0, 0x4}, -34},     // the lowest normal one: 2^52 * 2^(-1088 + 14)
        {0x1p-1030, {0, 0x400'0000}, -34}, // denormal: its upper half stays
        {0x1.8p-1043, Words{}, 0},         // a denormal with nothing in the upper half
        {std::numeric_limits<double>::denorm_min(), Words{}, 0},
        {0.0, Words{}, 0},
        {-0.0, Words{}, 0},
        {std::nan(""), Words{}, 0},
    };
    for (const auto& c : cases) {
        for (const std::int64_t e : {std::int64_t{0}, std::int64_t{1} << 60}) {
            Number T(3);
            T.f.set_double(c.x, e);
            expect_sound(T);
            EXPECT_EQ(words_of(T.f), c.T) << c.x;
            EXPECT_EQ(T.f.exp, c.T.empty() ? 0 : c.exp + e) << c.x;
            EXPECT_EQ(T.f.sign, c.x > 0 && !c.T.empty()) << c.x;
        }
    }
}

TEST(BigFloatDouble, GoesThereAndBack) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    for (int round = 0; round < 5000; ++round) {
        const double x = std::ldexp(static_cast<double>(random() | 1) * (round % 2 ? 1 : -1),
                                    static_cast<int>(random() % 1800) - 900);
        Number T(3);
        T.f.set_double(x, 1000);
        const mpq_class scaled = mpq_class(std::abs(x)) * mpq_class(mpz_class(1) << 32 * 40);
        EXPECT_TRUE(in_units(T.f, 1000 - 40) == scaled) << x;
        std::int64_t e;
        const double d = T.f.to_double(e);
        EXPECT_EQ(std::ldexp(d, static_cast<int>(32 * (e - 1000))), x);

        const Number A = random_number(random, 1 + random() % 8);
        const double a = A.f.to_double(e);
        EXPECT_EQ(e, A.f.top());
        EXPECT_TRUE(std::abs(a) >= 0x1p-32 && std::abs(a) < 1 && (a > 0) == A.f.sign);
        EXPECT_LT(std::abs(mpq_class(mpq_class(std::abs(a)) / in_units(A.f, e) - 1).get_d()), 0x1p-51);
    }
    std::int64_t e;
    EXPECT_EQ(Number({1}, 7).f.to_double(e), 0x1p-32);
    EXPECT_EQ(e, 8);
    EXPECT_LT(Number(Words(4, ones), 0).f.to_double(e), 1.0);
    EXPECT_FALSE(std::signbit(Number(Words{}, 0, false).f.to_double(e)));
}

TEST(BigFloatNormalization, AZeroTopWordIsFatal) {
    Number({0, 1}, 0).f.check_normalization();
    Number(Words{}, 0).f.check_normalization();
    EXPECT_EXIT(
        {
            dup2(2, 1);
            Number({1, 0}, 0).f.check_normalization();
        },
        testing::ExitedWithCode(1), "BigFloat::check_normalization\\(\\): Top word is zero\\.");
}

} // namespace
