#include "series/polynomials/simple_int.h"

#include "app/raised.h"
#include "series/mpfr_value.h"
#include "series/polynomials/gmp_support.h"

#include <gtest/gtest.h>

namespace {

using Polynomials::SimpleInt;
using test::gmp;
using test::simple;

TEST(SimpleInt, ArithmeticAgreesWithGmpThroughCarriesAndSigns) {
    SCOPED_TRACE(test::seed_trace());
    std::mt19937_64 random(test::seed());
    for (int i = 0; i < 3000; ++i) {
        const unsigned bits = i % 5 == 0 ? 3000 : 200;
        const mpz_class a = test::random_integer(random, bits);
        const mpz_class b =
            i % 7 == 0 ? mpz_class(-a + test::random_integer(random, 3)) : test::random_integer(random, bits);
        const mpz_class c = test::random_integer(random, bits);
        SCOPED_TRACE(a.get_str() + ' ' + b.get_str() + ' ' + c.get_str());
        const SimpleInt x = simple(a), y = simple(b);
        ASSERT_EQ(gmp(x), a);
        ASSERT_EQ(gmp(x + y), a + b);
        ASSERT_EQ(gmp(x - y), a - b);
        ASSERT_EQ(gmp(x * y), a * b);
        ASSERT_EQ(gmp(gcd(x, y)), gcd(a, b));
        ASSERT_EQ(x < y, a < b);
        ASSERT_EQ(x == y, a == b);
        ASSERT_EQ(x.bits(), a == 0 ? 0 : mpz_sizeinbase(a.get_mpz_t(), 2));
        SimpleInt sum = simple(c), difference = sum, doubled = x, halved = x;
        sum.add_product(x, y);
        difference.sub_product(x, y);
        doubled.shift_left_1();
        halved.shift_right_1();
        ASSERT_EQ(gmp(sum), c + a * b);
        ASSERT_EQ(gmp(difference), c - a * b);
        ASSERT_EQ(gmp(doubled), 2 * a);
        ASSERT_EQ(gmp(halved), a / 2);
        const SimpleInt& alias = sum;
        sum += alias;
        ASSERT_EQ(gmp(sum), 2 * (c + a * b));
        sum -= alias;
        ASSERT_EQ(sum, SimpleInt());
        if (b == 0) continue;
        const Polynomials::DivMod step = divmod(x, y);
        ASSERT_EQ(gmp(step.quotient), a / b);
        ASSERT_EQ(gmp(step.remainder), a % b);
    }
}

// Quotient digits whose estimate is one too large, where the divisor has to be added back, and estimates at the top
// of the word.
TEST(SimpleInt, DivisionCorrectsAnEstimateThatIsTooLarge) {
    const mpz_class word = mpz_class(1) << 64;
    const mpz_class top = word / 2, last = word - 1;
    const mpz_class divisors[] = {top * word * word + last, (top * word + 1) * word, (word * word - 1) * word + last,
                                  top * word * word + 1};
    for (const mpz_class& divisor : divisors)
        for (const mpz_class& digit : {mpz_class(1), top, mpz_class(last - 1), last, mpz_class(word + 1)})
            for (const mpz_class& rest : {mpz_class(0), mpz_class(1), mpz_class(divisor - 1)}) {
                const mpz_class value = digit * divisor + rest;
                const Polynomials::DivMod step = divmod(simple(value), simple(divisor));
                EXPECT_EQ(gmp(step.quotient), digit);
                EXPECT_EQ(gmp(step.remainder), rest);
            }
}

TEST(SimpleInt, LimitsAndZero) {
    EXPECT_EQ(SimpleInt(INT64_MIN).to_string(), "-9223372036854775808");
    EXPECT_EQ(SimpleInt::from_unsigned(~0ULL).to_string(), "18446744073709551615");
    EXPECT_EQ(-SimpleInt(), SimpleInt());
    EXPECT_EQ((SimpleInt(-5) + SimpleInt(5)).sign(), 0);
    EXPECT_EQ(SimpleInt(-5) + SimpleInt(5), SimpleInt()); // no negative zero
    EXPECT_EQ(power(SimpleInt(-3), 3), SimpleInt(-27));
    EXPECT_EQ(test::raised_by([] { divmod(SimpleInt(1), SimpleInt()); }), "ArithmeticException: Divide by zero.");
}

TEST(SimpleInt, DoubleDoubleTakesTheTopBits) {
    SCOPED_TRACE(test::seed_trace());
    std::mt19937_64 random(test::seed());
    for (int i = 0; i < 500; ++i) {
        const mpz_class value = test::random_integer(random, i % 2 ? 800 : 100);
        test::Mpfr expected;
        mpfr_set_prec(expected.x, 1000);
        mpfr_set_z(expected.x, value.get_mpz_t(), MPFR_RNDN);
        EXPECT_LE(test::error_bits(simple(value).to_double_double(), expected), i % 2 ? -100 : -104) << value;
    }
}

} // namespace
