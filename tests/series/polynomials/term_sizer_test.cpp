#include "series/polynomials/term_sizer.h"

#include "app/raised.h"
#include "series/double_double/stirling.h"
#include "series/mpfr_value.h"
#include "series/polynomials/gmp_support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

using namespace Polynomials;
using test::Mpfr;

/// ln|Q(a + 1) ... Q(b)|, to 400 bits.
Mpfr exact_range(const IntegerPolynomial& q, std::uint64_t a, std::uint64_t b) {
    Mpfr sum, term;
    for (std::uint64_t k = a + 1; k <= b; ++k) {
        const mpz_class value = abs(test::gmp(q.evaluate(SimpleInt::from_unsigned(k))));
        mpfr_set_z(term.x, value.get_mpz_t(), MPFR_RNDN);
        mpfr_log(term.x, term.x, MPFR_RNDN);
        mpfr_add(sum.x, sum.x, term.x, MPFR_RNDN);
    }
    return sum;
}

double difference(const DoubleDouble& got, const Mpfr& expected) {
    Mpfr error(got);
    mpfr_sub(error.x, error.x, expected.x, MPFR_RNDN);
    return error.to_double();
}

TEST(PolynomialTermSizer, RecordsOfSmallPolynomials) {
    const auto sizer = [](std::initializer_list<std::int64_t> q) {
        return make_sizer("Q(x)", IntegerPolynomial(q), {});
    };
    const auto line = sizer({0, 1});
    EXPECT_EQ(line->lead_double, 0);
    EXPECT_EQ(line->factorial_degree->degree_double, 1);
    for (const std::uint64_t x : {0, 1, 5, 1'000'000}) {
        EXPECT_EQ(line->S(x), zvp::stirling(DoubleDouble::from_integer(x)));
        EXPECT_EQ(line->S_double(x), zvp::stirling(static_cast<double>(x)));
    }
    EXPECT_EQ(sizer({1, 2})->factorial_degree->degree_double, 1);    // -1/2
    EXPECT_EQ(sizer({1, 0, 1})->factorial_degree->degree_double, 2); // +-i
    EXPECT_EQ(sizer({1, 2})->lead_double, std::log(2.0));

    const auto half = sizer({-7, 2});
    EXPECT_EQ(half->factorial_degree, nullptr);
    ASSERT_EQ(half->real_zeros.size(), 1u);
    EXPECT_EQ(half->real_zeros[0].a, DoubleDouble(3.5));
    for (std::uint64_t x = 0; x < 12; ++x) { // at 3, the formula meets the logarithm of -1/2 with the factor 0
        EXPECT_TRUE(std::isfinite(half->S_double(x))) << x;
        EXPECT_NEAR(half->S_double(x), half->S(x).hi, 1e-13) << x;
    }

    const auto twice = sizer({49, -28, 4}); // (2x - 7)^2
    ASSERT_EQ(twice->real_zeros.size(), 1u);
    EXPECT_EQ(twice->real_zeros[0].m, 2);
    const auto pair = sizer({25, 6, 1}); // -3 +- 4i
    ASSERT_EQ(pair->complex_pairs.size(), 1u);
    EXPECT_EQ(pair->complex_pairs[0].a, DoubleDouble(-3));
    EXPECT_EQ(pair->complex_pairs[0].b, DoubleDouble(4));
    EXPECT_EQ(pair->S(0), DoubleDouble());
}

TEST(PolynomialTermSizer, RefusesAFactorOfZeroAndWhatHasNoSize) {
    const auto refusal = [](const IntegerPolynomial& q) { return test::raised_by([&] { make_sizer("Q(x)", q, {}); }); };
    EXPECT_EQ(refusal({-3, 1}), "InvalidParametersException: Polynomial Q(x) is zero at x = 3.");
    EXPECT_EQ(refusal({6, -5, 1}), "InvalidParametersException: Polynomial Q(x) is zero at x = 2.");
    EXPECT_EQ(refusal({-1, 1}), "InvalidParametersException: Polynomial Q(x) is zero at x = 1.");
    EXPECT_EQ(refusal({3, 1}), "nothing");
    EXPECT_EQ(refusal({}), "InvalidParametersException: Polynomial is zero.");
    EXPECT_EQ(test::raised_by([] { PochhammerComplexPairSizer(0.5, 0.5, 1); }),
              "InvalidParametersException: Root too close to zero.");
    EXPECT_EQ(test::raised_by([] { PochhammerComplexPairSizer(0, 0x1.0000001p50, 1); }),
              "InvalidParametersException: Imaginary part is too large.");
    EXPECT_EQ(test::raised_by([] {
                  PolynomialTermSizer({}, {{{2, 3, -1, 0}, 1}});
              }),
              "InvalidParametersException: Root with negative imaginary part.");
}

// Exact zeros left of the terms: only Stirling's remainder, below 1 / (6 |t|) for each zero, is between both values.
TEST(PolynomialTermSizer, AgreesWithTheSumOfLogarithmsWhereTheZerosAreExact) {
    const struct {
        const char* zeros;
        IntegerPolynomial q;
        double bound;
    } cases[] = {{"-5 twice and 5 * top", {125, 50, 5}, 2.0 / 60},
                 {"-5 +- 6i", {61, 10, 1}, 2.0 / 12 / 7},
                 {"0, -7 and -8 +- i", {0, 455, 177, 23, 1}, 1.0 / 6}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.zeros);
        const auto sizer = make_sizer("Q(x)", c.q, {});
        for (const auto& [a, b] : {std::array<std::uint64_t, 2>{0, 1}, {0, 1000}, {17, 5000}, {5000, 5000}}) {
            const Mpfr expected = exact_range(c.q, a, b);
            // Only g(0) is ln(0!) - 1 without Stirling's remainder; g(b) is off by 1 / (12 b).
            EXPECT_NEAR(difference(sizer->range(a, b), expected), 0, a > 0 ? c.bound : c.bound + 0.09) << a << ' ' << b;
            EXPECT_NEAR(sizer->range_double(a, b), sizer->range(a, b).hi, 1e-9);
            EXPECT_NEAR(difference(sizer->S(b) - sizer->S(a), sizer->range(a, b)), 0, 1e-20 * sizer->S(b).hi);
            EXPECT_NEAR(sizer->S_double(b), sizer->S(b).hi, 1e-9);
        }
    }
}

TEST(PolynomialTermSizer, StaysNearTheSumOfLogarithmsForRandomPolynomials) {
    SCOPED_TRACE(test::seed_trace());
    std::mt19937_64 random(test::seed());
    for (int i = 0; i < 40; ++i) {
        std::vector<std::int64_t> coefficients(2 + random() % 6);
        for (std::int64_t& c : coefficients) c = static_cast<std::int64_t>(random() % 4001) - 2000;
        if (coefficients.back() == 0) coefficients.back() = -1;
        const IntegerPolynomial q(coefficients);
        for (std::uint64_t k = 1; k <= 2500; ++k) // a zero at a positive integer has its own test
            if (q.evaluate(SimpleInt::from_unsigned(k)).is_zero()) coefficients.clear();
        if (coefficients.empty()) continue;
        const auto sizer = make_sizer("Q(x)", q, zvp::DoubleDouble(0.25));
        // A zero is at most 1 from the centre it is taken at, and a term next to it can be far below 1.
        const double bound = (std::log(2500.0) + 6) * static_cast<double>(q.degree());
        for (const std::uint64_t b : {10, 300, 2500})
            EXPECT_NEAR(difference(sizer->range(0, b), exact_range(q, 0, b)), 0.25 * static_cast<double>(b), bound)
                << i << ' ' << b;
    }
}

// Terms beyond 2^50 whose difference is all that counts: a double holds nothing of it.
TEST(PolynomialTermSizer, GreatZerosKeepTheirDifferencesInDoubleDouble) {
    const mpz_class one = 1;
    const test::Poly cases[] = {{one << 60, 1}, {-(one << 60) - 1, 2}, {one << 100, 0, 1}, {(one << 98) + 9, 6, 1}};
    for (const test::Poly& p : cases) {
        const IntegerPolynomial q = test::simple(p);
        const auto sizer = make_sizer("Q(x)", q, {});
        for (const auto& record : sizer->real_zeros) EXPECT_TRUE(record.use_dd);
        for (const auto& record : sizer->complex_pairs) EXPECT_TRUE(record.use_dd);
        const Mpfr expected = exact_range(q, 0, 1000);
        EXPECT_NEAR(difference(sizer->range(0, 1000), expected), 0, 1e-8) << p[0];
        EXPECT_NEAR(sizer->range_double(0, 1000), expected.to_double(), 1e-8) << p[0];
        EXPECT_NEAR(sizer->S_double(1000), expected.to_double(), 1e-8) << p[0];
        EXPECT_NEAR(difference(sizer->S(1000), expected), 0, 1e-8) << p[0];
    }
}

TEST(FactorialSizer, IsItsFormula) {
    const FactorialSizer sizer{DoubleDouble(3), DoubleDouble(2.5, 1e-17)};
    for (const double x : {1.0, 10.0, 1e12}) {
        const DoubleDouble expected =
            DoubleDouble(3) * zvp::stirling(DoubleDouble(x)) + DoubleDouble(2.5, 1e-17) * DoubleDouble(x);
        EXPECT_EQ(sizer.S(DoubleDouble(x)), expected);
        EXPECT_NEAR(sizer.S_double(x), expected.hi, 1e-14 * std::fabs(expected.hi));
    }
}

} // namespace
