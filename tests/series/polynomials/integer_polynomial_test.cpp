#include "series/polynomials/integer_polynomial.h"

#include "app/raised.h"
#include "series/polynomials/complex_line.h"
#include "series/polynomials/complex_zeros.h"
#include "series/polynomials/gmp_support.h"
#include "series/polynomials/polynomial_division.h"
#include "series/polynomials/sturm_sequence.h"

#include <gtest/gtest.h>

namespace {

using namespace Polynomials;
using test::gmp;
using test::Poly;
using test::simple;
using test::operator*;
using RationalPoly = std::vector<mpq_class>;

Poly random_poly(std::mt19937_64& random, std::size_t max_size, unsigned bits) {
    Poly p(random() % (max_size + 1));
    for (mpz_class& c : p) c = random() % 3 ? test::random_integer(random, bits) : mpz_class(0);
    if (!p.empty() && p.back() == 0) p.back() = random() % 2 ? 1 : -1;
    return p;
}

mpq_class value_at(const RationalPoly& p, const mpq_class& x) {
    mpq_class value;
    for (std::size_t i = p.size(); i-- > 0;) value = value * x + p[i];
    return value;
}

/// The textbook's chain: negative remainders of rational polynomials.
std::vector<RationalPoly> rational_chain(const Poly& p0, const Poly& p1) {
    std::vector<RationalPoly> chain{{p0.begin(), p0.end()}};
    for (RationalPoly current(p1.begin(), p1.end()); !current.empty();) {
        RationalPoly rest = chain.back();
        while (rest.size() >= current.size()) {
            const mpq_class factor = rest.back() / current.back();
            for (std::size_t i = 0; i < current.size(); ++i)
                rest[rest.size() - current.size() + i] -= factor * current[i];
            rest.pop_back();
        }
        while (!rest.empty() && rest.back() == 0) rest.pop_back();
        for (mpq_class& c : rest) c = -c;
        chain.push_back(std::move(current));
        current = std::move(rest);
    }
    return chain;
}

// Gaps in the degrees, a first polynomial of the lower degree, common factors and negative tops all change how the
// subresultants' divisors go; only the signs of every element at every point are what counts.
TEST(SturmSequence, HasTheSignsOfTheRationalChain) {
    SCOPED_TRACE(test::seed_trace());
    std::mt19937_64 random(test::seed());
    for (int i = 0; i < 600; ++i) {
        Poly a = random_poly(random, 12, 40), b = random_poly(random, 12, 40);
        if (a.empty()) continue;
        if (i % 4 == 0) {
            const Poly common = random_poly(random, 4, 10);
            a = a * common, b = b * common;
            if (a.empty()) continue;
        }
        if (i % 4 == 1) b = gmp(simple(a).derivative());
        const SturmSequence chain = SturmSequence::generate(simple(a), simple(b));
        const std::vector<RationalPoly> expected = rational_chain(a, b);
        ASSERT_EQ(chain.size(), expected.size()) << i;
        for (std::size_t k = 0; k < chain.size(); ++k) {
            ASSERT_EQ(chain[k].size(), expected[k].size()) << i;
            const mpq_class ratio = mpq_class(gmp(chain[k].top())) / expected[k].back();
            ASSERT_GT(ratio, 0) << i << ' ' << k;
            const mpz_class x = test::random_integer(random, 8), q = 7;
            ASSERT_EQ(mpq_class(gmp(chain[k].evaluate(simple(x)))), ratio * value_at(expected[k], x)) << i << ' ' << k;
            mpz_class scale;
            mpz_pow_ui(scale.get_mpz_t(), q.get_mpz_t(), chain[k].degree());
            ASSERT_EQ(mpq_class(gmp(chain[k].evaluate(simple(x), simple(q)))) / scale,
                      ratio * value_at(expected[k], mpq_class(x) / q));
        }
    }
}

TEST(SturmSequence, CountsFlipsPastZerosInTheChain) {
    const SturmSequence chain = SturmSequence::generate({-2, 0, 1}, {0, 2}); // x^2 - 2, 2x, 2
    EXPECT_EQ(chain.sign_flips(0).count, 1u);
    EXPECT_EQ(chain.sign_flips(-2).count, 2u);
    EXPECT_EQ(chain.sign_flips_minus_infinity(), 2u);
    EXPECT_EQ(chain.sign_flips_plus_infinity(), 0u);
    EXPECT_EQ(SturmSequence::generate({-1, 1}, {1}).sign_flips(1).first_sign, 0);
    EXPECT_EQ(SturmSequence::generate({-1, 1}, {}).sign_flips(0).count, 0u);
    EXPECT_EQ(test::raised_by([] { SturmSequence::generate({}, {1}); }),
              "InvalidParametersException: Polynomial is zero.");
}

TEST(IntegerPolynomial, DivisionGivesTheScaledOperandBack) {
    SCOPED_TRACE(test::seed_trace());
    std::mt19937_64 random(test::seed());
    for (int i = 0; i < 500; ++i) {
        const Poly a = random_poly(random, 10, 70), b = random_poly(random, 6, 70);
        if (b.empty()) continue;
        const PolynomialDivMod result = divmod(simple(a), simple(b));
        ASSERT_GT(result.scale.sign(), 0);
        ASSERT_LT(result.remainder.size(), b.size());
        Poly sum = gmp(result.quotient) * b;
        sum.resize(std::max(sum.size(), std::max(a.size(), b.size())));
        for (std::size_t k = 0; k < result.remainder.size(); ++k) sum[k] += gmp(result.remainder[k]);
        for (std::size_t k = 0; k < sum.size(); ++k)
            ASSERT_EQ(sum[k], k < a.size() ? mpz_class(a[k] * gmp(result.scale)) : mpz_class(0)) << i;
        ASSERT_EQ(exact_divide(simple(a * b), simple(b)), simple(a));
    }
}

TEST(IntegerPolynomial, RefusesWhatDoesNotDivide) {
    const struct {
        const char* expected;
        IntegerPolynomial a, b;
    } cases[] = {{"AlgorithmFailedException: Exact division yielded non-zero modulus.", {1, 0, 1}, {1, 1}},
                 {"AlgorithmFailedException: Scale is not 1.", {2, 1}, {4, 2}},
                 {"ArithmeticException: Divide by zero.", {2, 1}, {}}};
    for (const auto& c : cases) EXPECT_EQ(test::raised_by([&] { exact_divide(c.a, c.b); }), c.expected);
}

TEST(IntegerPolynomial, ShiftAgreesWithValuesUpToDegree62) {
    SCOPED_TRACE(test::seed_trace());
    std::mt19937_64 random(test::seed());
    for (const std::size_t size : {1, 2, 7, 63}) {
        std::vector<SimpleInt> coefficients;
        for (std::size_t i = 0; i < size; ++i) coefficients.push_back(simple(test::random_integer(random, 64)));
        coefficients.back() = 1;
        const IntegerPolynomial p(coefficients);
        const SimpleInt s = simple(test::random_integer(random, 70)), x = simple(test::random_integer(random, 70));
        EXPECT_EQ(p.shifted(s).evaluate(x), p.evaluate(x + s));
        EXPECT_EQ(p.shifted(s).size(), size);
    }
    mpz_class expected;
    for (unsigned n = 0; n <= 62; ++n)
        for (unsigned k = 0; k <= n + 1; ++k) {
            mpz_bin_uiui(expected.get_mpz_t(), n, k);
            ASSERT_EQ(binomial_coefficient_u64(n, k), expected.get_ui()) << n << ' ' << k;
        }
    EXPECT_EQ(test::raised_by([] { binomial_coefficient_u64(63, 0); }),
              "InvalidParametersException: Cannot go beyond degree 62.");
}

TEST(ComplexLine, RefusesARepeatedZeroOnTheLine) {
    const IntegerPolynomial p{16, 0, 8, 0, 1}; // (x^2 + 4)^2
    EXPECT_EQ(test::raised_by([&] { ComplexLine(p, ComplexLine::Direction::vertical, 0); }),
              "InvalidParametersException: GCD(real, imag) is not 1. Input polynomial is not square-free.");
}

TEST(ComplexZeros, ContradictingCountsAreRefused) {
    const struct {
        const char* expected;
        std::ptrdiff_t index;
        std::size_t edge;
    } cases[] = {{"Cauchy Index is negative.", -2, 0},
                 {"Cauchy Index is larger than edge zeros.", 1, 3},
                 {"Adjusted Cauchy Index is not a multiple of 2.", 4, 1}};
    for (const auto& c : cases)
        EXPECT_EQ(test::raised_by([&] { compute_inside_zeros(c.index, c.edge); }),
                  std::string("AlgorithmFailedException: ") + c.expected);
    EXPECT_EQ(compute_inside_zeros(5, 1), 2u);
}

} // namespace
