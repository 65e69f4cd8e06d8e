#include "series/double_double/double_double.h"

#include "app/raised.h"
#include "series/double_double/size_units.h"
#include "series/double_double/stirling.h"
#include "series/mpfr_value.h"
#include "support/seed.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using test::error_bits;
using test::Mpfr;
using zvp::DoubleDouble;

/// Any sign, an exponent within `spread` of 0, and a low part that is full, short, zero or far below.
DoubleDouble random_number(std::mt19937_64& random, int spread) {
    const auto fraction = [&] { return 1 + std::ldexp(static_cast<double>(random() >> 12), -52); };
    const double hi = std::ldexp(fraction(), static_cast<int>(random() % (2 * spread + 1)) - spread);
    const double ulp = std::ldexp(1.0, std::ilogb(hi) - 52);
    const double lows[] = {0, ulp / 2 * (fraction() - 1), -ulp / 2 * (fraction() - 1), ulp * 0x1p-40, -ulp / 4};
    const DoubleDouble value = zvp::quick_two_sum(hi, lows[random() % 5]);
    return random() % 2 ? value : -value;
}

bool is_normal(const DoubleDouble& a) { return a.hi + a.lo == a.hi; }

TEST(DoubleDouble, ArithmeticHolds100BitsUnderCancellationAndUnlikeExponents) {
    SCOPED_TRACE(test::seed_trace());
    std::mt19937_64 random(test::seed());
    using Reference = int (*)(mpfr_ptr, mpfr_srcptr, mpfr_srcptr, mpfr_rnd_t);
    for (int i = 0; i < 50'000; ++i) {
        const DoubleDouble a = random_number(random, 60);
        // Every third b nearly cancels a.
        const DoubleDouble b =
            i % 3 ? random_number(random, 60) : -a + random_number(random, 1) * std::ldexp(a.hi, -45);
        const struct {
            const char* name;
            DoubleDouble got;
            Reference reference;
            double bits;
        } cases[] = {{"sum", a + b, mpfr_add, -104},
                     {"difference", a - b, mpfr_sub, -104},
                     {"product", a * b, mpfr_mul, -103},
                     {"quotient", a / b, mpfr_div, -102}};
        for (const auto& c : cases) {
            Mpfr expected;
            c.reference(expected.x, Mpfr(a).x, Mpfr(b).x, MPFR_RNDN);
            ASSERT_LE(error_bits(c.got, expected), c.bits) << c.name << ' ' << i;
            ASSERT_TRUE(is_normal(c.got)) << c.name << ' ' << i;
        }
    }
}

TEST(DoubleDouble, LogarithmKeepsItsRelativeErrorNearOne) {
    SCOPED_TRACE(test::seed_trace());
    std::mt19937_64 random(test::seed());
    for (int i = 0; i < 20'000; ++i) {
        DoubleDouble a = abs(random_number(random, i % 2 ? 3 : 300));
        if (i % 4 == 0)
            a = DoubleDouble(1) + random_number(random, 1) * std::ldexp(1.0, -static_cast<int>(random() % 100));
        if (!(a > DoubleDouble())) continue;
        Mpfr expected;
        mpfr_log(expected.x, Mpfr(a).x, MPFR_RNDN);
        ASSERT_LE(error_bits(log(a), expected), -100) << a.hi << ' ' << a.lo;
    }
    EXPECT_EQ(log(DoubleDouble(1)), DoubleDouble());
}

TEST(DoubleDouble, AngleInEveryOctantAndOnTheAxes) {
    SCOPED_TRACE(test::seed_trace());
    std::mt19937_64 random(test::seed());
    for (int i = 0; i < 20'000; ++i) {
        const DoubleDouble x = i % 50 == 7 ? DoubleDouble() : random_number(random, i % 2 ? 1 : 50);
        const DoubleDouble y = i % 50 == 9 ? DoubleDouble() : i % 50 == 11 ? x : random_number(random, i % 2 ? 1 : 50);
        Mpfr expected;
        mpfr_atan2(expected.x, Mpfr(y).x, Mpfr(x).x, MPFR_RNDN);
        ASSERT_LE(error_bits(atan2(y, x), expected), -100) << y.hi << ' ' << x.hi;
    }
}

TEST(DoubleDouble, IntegersAreExactAndTruncateByHalves) {
    const std::uint64_t values[] = {0, 1, (1ULL << 53) + 1, (1ULL << 63) - 1, 1ULL << 63, ~0ULL, 0xFFFF'FFFF'FFFF'F800};
    for (const std::uint64_t value : values) {
        const DoubleDouble got = DoubleDouble::from_integer(value);
        EXPECT_EQ(mpfr_cmp_ui(Mpfr(got).x, value), 0) << value;
        const auto is_signed = static_cast<std::int64_t>(value);
        EXPECT_EQ(mpfr_cmp_si(Mpfr(DoubleDouble::from_signed(is_signed)).x, is_signed), 0) << is_signed;
        EXPECT_TRUE(is_normal(got));
    }
    EXPECT_EQ(truncated_sum(DoubleDouble(0x1p60, -3.5)), (1LL << 60) - 3);
    EXPECT_EQ(truncated_sum(DoubleDouble(-2.75, 0x1p-60)), -2);
    EXPECT_EQ(truncated_sum(DoubleDouble(7, -0x1p-60)), 7);
}

TEST(DoubleDouble, ComparisonLooksAtTheLowPartsOnATie) {
    EXPECT_LT(DoubleDouble(1, -0x1p-60), DoubleDouble(1, 0x1p-80));
    EXPECT_GT(DoubleDouble(1, 0x1p-60), DoubleDouble(1));
    EXPECT_LT(DoubleDouble(1, 0x1p-54), DoubleDouble(1 + 0x1p-52, -0x1p-54));
}

TEST(DoubleDouble, TextIsReadToItsLastBitThatCounts) {
    const char* texts[] = {"0.6931471805599453094172321214581765680755",
                           "22.18070977791824990135142788666165017842",
                           "0.04508422002778010647999764628130912929458",
                           "2.302585092994045684017991454684364207601101488628",
                           "9007199254740990.6666666666",
                           "1",
                           "0.5",
                           ".25",
                           "3.",
                           "0000.1",
                           "0"};
    for (const char* text : texts) {
        Mpfr expected;
        mpfr_set_str(expected.x, text, 10, MPFR_RNDN);
        EXPECT_LE(error_bits(DoubleDouble::parse(text), expected), -104) << text;
    }
    for (const char* text : {"", ".", "1e5", "-1", "1.2.3", " 1"})
        EXPECT_EQ(test::raised_by([&] { DoubleDouble::parse(text); }),
                  std::string("InvalidParametersException: Not a decimal number: ") + text);
    EXPECT_EQ(test::raised_by([] { DoubleDouble::parse("9007199254740992"); }),
              "InvalidParametersException: Number is too large: 9007199254740992");
}

TEST(SizeUnits, AreReciprocalAndMatchTheLogarithms) {
    Mpfr ln_2, ln_10;
    mpfr_const_log2(ln_2.x, MPFR_RNDN);
    mpfr_log_ui(ln_10.x, 10, MPFR_RNDN);
    EXPECT_LE(error_bits(zvp::ln_2(), ln_2), -104);
    mpfr_mul_ui(ln_2.x, ln_2.x, 32, MPFR_RNDN);
    EXPECT_LE(error_bits(zvp::nats_per_word(), ln_2), -104);
    mpfr_ui_div(ln_2.x, 1, ln_2.x, MPFR_RNDN);
    EXPECT_LE(error_bits(zvp::words_per_nat(), ln_2), -104);
    mpfr_ui_div(ln_10.x, 1, ln_10.x, MPFR_RNDN);
    EXPECT_LE(error_bits(zvp::digits_per_nat(), ln_10), -104);
}

// ln(x!) - 1 is above Stirling's value by less than 1 / (12 x); at 10^15 the difference of two doubles would hold
// no digit behind the point.
TEST(Stirling, StaysWithinItsBoundOfTheLogarithmOfTheFactorial) {
    for (const double x : {0.0, 1.0, 2.0, 10.0, 1e3, 1e9, 1e15}) {
        Mpfr expected(x + 1);
        mpfr_lngamma(expected.x, expected.x, MPFR_RNDN);
        mpfr_sub_ui(expected.x, expected.x, 1, MPFR_RNDN);
        mpfr_sub(expected.x, expected.x, Mpfr(zvp::stirling(DoubleDouble(x))).x, MPFR_RNDN);
        EXPECT_GE(expected.to_double(), -1e-14 * (x > 1e9)) << x;
        EXPECT_LE(expected.to_double(), x == 0 ? 0 : 1 / (12 * x) + 1e-15 * (x > 1e9)) << x;
        const double in_double = zvp::stirling(x);
        EXPECT_NEAR(in_double, zvp::stirling(DoubleDouble(x)).hi, 1e-15 * (std::fabs(in_double) + 1));
    }
}

} // namespace
