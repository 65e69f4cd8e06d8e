#include "app/raised.h"
#include "numbers/big_float_support.h"

#include <limits>
#include <unistd.h>

namespace {

using namespace test;
using zvp::ParallelContext;

mpz_class cut(const BigFloat& f, std::int64_t unit) {
    const mpq_class q = in_units(f, unit);
    return q.get_num() / q.get_den();
}

std::int64_t low_of_top(const BigFloat& f, std::size_t n) {
    return f.top() - static_cast<std::int64_t>(std::min(n, f.L));
}

mpz_class magnitude(std::int64_t x) {
    mpz_class m;
    mpz_set_si(m.get_mpz_t(), x);
    return abs(m);
}

void check_word_operations(std::mt19937_64& random, std::size_t p, const ParallelContext& ctx, const Number& A) {
    SCOPED_TRACE(testing::Message() << "p " << p << " A " << A.f.L << " tds " << ctx.tds);
    const auto x = static_cast<zvp::wtype>(1 + (random_up_to_bits(random, 32) | (random() % 8 == 0 ? ones - 1 : 0)));
    if (x != 0) {
        Number T(p + 2);
        T.f.set_mul_uW(p, ctx, A.f, x);
        const std::int64_t unit = low_of_top(A.f, p + 1);
        expect_sound(T);
        EXPECT_TRUE(T.f.exp == unit && T.f.sign == A.f.sign);
        EXPECT_TRUE(in_units(T.f, unit) == cut(A.f, unit) * x) << "x " << x;
        Number U(words_of(T.f), T.f.exp, T.f.sign, 1);
        U.f.mul_uW(ctx, x);
        expect_sound(U);
        EXPECT_TRUE(in_units(U.f, unit) == in_units(T.f, unit) * x) << "in place, x " << x;
    }

    std::int64_t y = static_cast<std::int64_t>(random_up_to_bits(random, 64) | 1);
    if (random() % 16 == 0) y = std::numeric_limits<std::int64_t>::min();
    const bool one_word = magnitude(y) <= ones;
    const std::size_t kept = std::max<std::size_t>(one_word ? p : p + 1, 1);
    Number V(one_word ? kept + 1 : std::min(kept, A.f.L) + 2);
    V.f.set_mul_uW(p, ctx, A.f, y);
    const std::int64_t unit = low_of_top(A.f, kept);
    expect_sound(V);
    EXPECT_TRUE(V.f.exp == unit && V.f.sign == (A.f.sign == (y > 0)));
    EXPECT_TRUE(in_units(V.f, unit) == cut(A.f, unit) * magnitude(y)) << "y " << y;

    std::int32_t d = static_cast<std::int32_t>(random_up_to_bits(random, 31) | 1) | 2; // no power of two
    if (random() % 2) d = -d;
    Number Q(p + 2);
    Q.f.set_div_sW(p, ctx, A.f, d);
    const std::int64_t low = A.f.top() - static_cast<std::int64_t>(p + 2);
    expect_sound(Q);
    EXPECT_TRUE(Q.f.exp == low && Q.f.sign == (A.f.sign == (d > 0)) && Q.f.L + 1 >= p + 2);
    const mpq_class quotient = in_units(A.f, low) / mpq_class(magnitude(d));
    EXPECT_TRUE(in_units(Q.f, low) == quotient.get_num() / quotient.get_den()) << "d " << d;
}

TEST(BigFloatWords, MultiplyAndDivideTheTopWords) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    for (int round = 0; round < 1500; ++round) {
        const std::size_t p = random() % (round % 4 ? 12 : 90);
        const std::int64_t origin = static_cast<std::int64_t>(random() % 3 - 1) << 60;
        check_word_operations(random, p, {}, random_number(random, 1 + random() % (2 * p + 4), origin, 40));
    }
}

TEST(BigFloatWords, LongNumbersInTasks) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed() + 1);
    const auto framework = zvp::make_framework_config("pushpool")->make_framework();
    const Number A = random_number(random, 110'000);
    const Number full(Words(110'000, ones), 3);
    for (const std::uint32_t tds : task_counts) {
        const ParallelContext ctx{tds, framework.get()};
        check_word_operations(random, 150'000, ctx, A);
        check_word_operations(random, 100'000, ctx, full);
        Number T(A.f.L);
        T.f.set_BigFloat(A.f.L - 2, ctx, A.f);
        EXPECT_EQ(words_of(T.f), words_of(A.f));
    }
}

TEST(BigFloatWords, TrivialFactors) {
    const Number zero(Words{}, 0);
    const Number A({1, 2, 3}, -1, false);
    Number T(5);
    const auto expect_zero = [&](const char* what) {
        EXPECT_TRUE(T.f.L == 0 && T.f.exp == 0 && T.f.T == T.f.buffer) << what;
    };
    T.f.set_mul_uW(3, {}, A.f, zvp::wtype{0}), expect_zero("A * 0");
    T.f.set_mul_uW(3, {}, zero.f, zvp::wtype{7}), expect_zero("0 * x");
    T.f.set_mul_uW(3, {}, A.f, std::int64_t{0}), expect_zero("A * signed 0");
    T.f.set_mul_uW(3, {}, zero.f, std::int64_t{1} << 40), expect_zero("0 * double word");
    T.f.set_div_sW(3, {}, zero.f, -5), expect_zero("0 / x");
    T.f.set_BigFloat(1, {}, A.f);
    T.f.mul_uW({}, 1);
    EXPECT_EQ(words_of(T.f), (Words{1, 2, 3}));
    T.f.mul_uW({}, 0), expect_zero("in place * 0");
}

TEST(BigFloatWords, DivisorsOfOneZeroAndPowersOfTwo) {
    const Number A({1, 2, 3}, -1);
    Number T(5);
    T.f.set_div_sW(1, {}, A.f, 1);
    EXPECT_EQ(words_of(T.f), (Words{1, 2, 3}));
    T.f.set_div_sW(3, {}, A.f, -1);
    EXPECT_EQ(words_of(T.f), (Words{0, 0, 1, 2, 3})) << "no copy: as long as any quotient";
    EXPECT_TRUE(T.f.exp == -3 && !T.f.sign);
    T.f.set_div_sW(0, {}, A.f, -1);
    EXPECT_EQ(words_of(T.f), (Words{2, 3}));
    EXPECT_EQ(raised_by([&] { T.f.set_div_sW(3, {}, A.f, 0); }), "ArithmeticException: Divide by zero.");
    for (const std::int32_t d : {2, -2, 4, 1 << 30, -(1 << 30)})
        EXPECT_EQ(raised_by([&] { T.f.set_div_sW(3, {}, A.f, d); }),
                  "InvalidParametersException: Untested with power-of-two.");
    EXPECT_EQ(raised_by([&] { T.f.set_div_sW(3, {}, A.f, std::numeric_limits<std::int32_t>::min()); }),
              "InvalidParametersException: Divisor is too large.");
}

TEST(BigFloatWords, AddInPlaceRipplesAndAppends) {
    const struct {
        Words A;
        zvp::wtype word;
        std::int64_t pos;
        Words expected;
    } cases[] = {
        {{1, 2, 3}, 5, -2, {6, 2, 3}},       {{1, 2, 3}, 5, 0, {1, 2, 8}},
        {{1, 2, 3}, 5, 1, {1, 2, 3, 5}}, // just above the top
        {{1, 2, 3}, 0, 1, {1, 2, 3}},    // where a zero may not become the top word
        {{ones, ones, 3}, 1, -2, {0, 0, 4}}, {{7, ones, ones}, ones, -1, {7, ones - 1, 0, 1}},
    };
    for (const auto& c : cases) {
        Number T(c.A, -2, false, 1);
        T.f.add_ip(c.word, c.pos);
        expect_sound(T);
        EXPECT_EQ(words_of(T.f), c.expected);
        EXPECT_TRUE(T.f.exp == -2 && !T.f.sign);
    }
}

TEST(BigFloatWords, AddInPlaceStopsOutsideTheNumber) {
    const auto text = "BigFloat::add_ip\\(\\): Magnitude is out of range\\.";
    EXPECT_EXIT(Number({1, 2}, 3, true, 1).f.add_ip(1, 2), testing::ExitedWithCode(1), "");
    EXPECT_EXIT(Number({1, 2}, 3, true, 1).f.add_ip(1, 6), testing::ExitedWithCode(1), "");
    EXPECT_EXIT(
        {
            dup2(2, 1);
            Number(Words{}, 0, true, 1).f.add_ip(1, 0);
        },
        testing::ExitedWithCode(1), text);
}

TEST(BigFloatWords, PurturbUpAddsOneAtTheBottom) {
    Number T({ones, 4}, 9, false);
    T.f.purturb_up(0);
    EXPECT_EQ(words_of(T.f), (Words{0, 5}));
    Number full({ones, ones}, 9, true, 1);
    full.f.purturb_up(0);
    expect_sound(full);
    EXPECT_EQ(words_of(full.f), (Words{0, 0, 1}));
    Number zero(Words{}, 0);
    zero.f.purturb_up(0);
    EXPECT_EQ(zero.f.L, 0u);
}

} // namespace
