// What polynomial series refuse, the values of their leaves, and the terms and precision of hand-coded ones.

#include "numbers/exact_support.h"
#include "series/double_double/size_units.h"
#include "series/families/factorial_series.h"
#include "series/families/poly_data.h"
#include "series/families/polynomial_leaf.h"
#include "series/mpfr_value.h"

namespace test {
namespace {

namespace bs = zvp::BinarySplitting;
using bs::Coefficients;
using zvp::wtype;

template <class Call>
std::string refusal(Call&& call) {
    try {
        call();
    } catch (const zvp::InvalidParametersException& failure) {
        return failure.function + " " + failure.message;
    }
    return "nothing";
}

std::string hypergeometric(const Coefficients& P, const Coefficients& Q, const Coefficients& R) {
    return refusal([&] { bs::SeriesHypergeometric_PolyData(P, Q, R); });
}
std::string hyperdescent(const Coefficients& P, const Coefficients& Q) {
    return refusal([&] { bs::SeriesHyperdescent_PolyData(P, Q); });
}
std::string binary(std::uint32_t power, const Coefficients& P, const Coefficients& Q) {
    return refusal([&] { bs::SeriesBinaryBBP_PolyData(power, P, Q); });
}

const Coefficients one{1}, linear{0, 1}, big{0, 100};

TEST(PolyData, RefusesWhatIsNoSeriesInTheOrderOfTheChecks) {
    const std::string g = "SeriesHypergeometric_PolyData() Polynomial ",
                      d = "SeriesHyperdescent_PolyData() Polynomial ", b = "SeriesBinaryBBP_PolyData() ";
    const std::string no_degree = "Q(x) must be degree 1 or higher.";
    EXPECT_EQ(hypergeometric({}, {}, {}), g + "P(x) is zero.");
    EXPECT_EQ(hypergeometric({0}, {}, {}), g + "R(x) is zero.");
    EXPECT_EQ(hypergeometric({0}, {5}, {0}), g + no_degree);
    EXPECT_EQ(hypergeometric({0}, {5, 0}, {0}), g + "P(x) has a zero top coefficient.");
    EXPECT_EQ(hypergeometric(one, {5, 0}, {0}), g + "Q(x) has a zero top coefficient.");
    EXPECT_EQ(hypergeometric(one, {5, 1}, {0}), g + "R(x) has a zero top coefficient.");
    EXPECT_EQ(hypergeometric(one, big, one), "nothing");

    EXPECT_EQ(hyperdescent({}, {}), d + "P(x) is zero.");
    EXPECT_EQ(hyperdescent({0}, {5}), d + no_degree);
    EXPECT_EQ(hyperdescent({0}, {5, 0}), d + "P(x) has a zero top coefficient.");
    EXPECT_EQ(hyperdescent(one, {5, 0}), d + "Q(x) has a zero top coefficient.");
    EXPECT_EQ(hyperdescent(one, linear), "nothing");

    EXPECT_EQ(binary(0, {}, {}), b + "Power cannot be zero.");
    EXPECT_EQ(binary(1025, {}, {}), b + "Power cannot be larger than 1024.");
    EXPECT_EQ(binary(1024, {}, {}), b + "Polynomial P(x) is zero.");
    EXPECT_EQ(binary(1, {0}, {5}), b + "Polynomial " + no_degree);
    EXPECT_EQ(binary(1024, one, linear), "nothing");
    EXPECT_EQ(binary(1, one, linear), "nothing");
}

TEST(PolyData, RefusesPositiveIntegerZerosOfQAndR) {
    EXPECT_NE(binary(3, one, {-7, 1}).find("Polynomial Q(x) is zero at x = 7."), std::string::npos);
    EXPECT_NE(hyperdescent(one, {-7, 1}).find("Polynomial Q(x) is zero at x = 7."), std::string::npos);
    EXPECT_NE(hypergeometric(one, {0, 100}, {-3, 1}).find("Polynomial R(x) is zero at x = 3."), std::string::npos);
}

TEST(PolyData, ConvergenceIsDecidedExactly) {
    const std::string head = "SeriesHypergeometric_PolyData::enforce_convergence() Series does not meet convergence "
                             "requirements.\nRequirement: |R(x)/Q(x)| < 0.75  for all x >= 1\n\n";
    const std::string at_1 = head + "|R(x)/Q(x)| >= 0.75 at x = 1.";
    struct Case {
        Coefficients Q, R;
        std::string answer;
    };
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    const Case cases[] = {
        {{0, 4}, {0, 3}, at_1},   // equal to 0.75 everywhere
        {{4, 4}, {3, 3}, at_1},   // at 1, too
        {{-1, 1}, {1}, at_1},     // a pole at 1
        {{0, 4}, {3}, at_1},      // 0.75/x
        {{1, 4}, {3}, "nothing"}, // just below
        {{-1, 4}, {-3}, at_1},    // -1 at 1
        {{most - 1, most}, {0, most / 4 * 3}, "nothing"},
        {{0, 1}, {0, 0, 1}, at_1},                                             // R grows faster
        {{0, 10}, {0, 0, 1}, head + "R(x)/Q(x) >= 0.75 at or around x = 8"},   // crosses at 7.5
        {{0, 10}, {0, 0, -1}, head + "R(x)/Q(x) <= -0.75 at or around x = 8"}, // and below
        {{0, 4}, {0, 0, 1}, head + "R(x)/Q(x) >= 0.75 at or around x = 3"},    // at exactly 3
        {{-25, 10}, {1}, head + "R(x)/Q(x) >= 0.75 at or around x = 3"},       // a pole at 2.5
        {{-5, 10}, {1}, "nothing"},                                            // a pole and a crossing below 1
        {{100, 0, 1}, {1, 1}, "nothing"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(hypergeometric(one, c.Q, c.R), c.answer);
    }
}

TEST(PolynomialLeaf, HornersValuesWithTheirResidues) {
    std::mt19937_64 random(seed());
    SCOPED_TRACE(seed_trace());
    constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
    for (unsigned round = 0; round < 20'000; ++round) {
        Coefficients polynomial(1 + random() % (round % 100 == 0 ? 80 : 6));
        for (std::int64_t& c : polynomial) {
            c = static_cast<std::int64_t>(random_up_to_bits(random, 64));
            if (random() % 8 == 0) c = 0;
            if (random() % 16 == 0) c = random() % 2 ? least : -1;
        }
        if (polynomial.back() == 0) polynomial.back() = 1;
        // At random indices, and at zeros and next to them.
        std::uint64_t k = 1 + random_up_to_bits(random, 64) / 2;
        if (polynomial.size() > 1 && random() % 4 == 0) {
            polynomial.resize(2);
            polynomial[1] = 1 + static_cast<std::int64_t>(random_up_to_bits(random, 20));
            k = 1 + random_up_to_bits(random, 40);
            polynomial[0] = -polynomial[1] * static_cast<std::int64_t>(k) + static_cast<std::int64_t>(random() % 3) - 1;
        }
        mpz_class expected = 0;
        for (std::size_t i = polynomial.size(); i-- > 0;)
            expected =
                expected * mpz_class(static_cast<unsigned long>(k)) + mpz_class(static_cast<long>(polynomial[i]));
        std::vector<wtype> words(2 * polynomial.size() + 2, 0xA5A5'A5A5);
        bs::ExactNumber T(words.data() + 1, 2 * polynomial.size());
        bs::set_polynomial("f()", T, polynomial, k);
        const mpz_class magnitude = integer(T.T, T.L);
        ASSERT_TRUE((T.sign || T.L == 0 ? magnitude : mpz_class(-magnitude)) == expected) << round;
        ASSERT_TRUE(T.L == 0 || T.T[T.L - 1] != 0);
        ASSERT_EQ(zvp::normalize_hash(T.hash), residue_of(expected));
        ASSERT_EQ(words.front(), 0xA5A5'A5A5);
        ASSERT_EQ(words.back(), 0xA5A5'A5A5);
        bs::ExactNumber small(words.data() + 1, 2 * polynomial.size() - 1);
        ASSERT_THROW(bs::set_polynomial("f()", small, polynomial, k), zvp::BufferTooSmallException);
    }
}

/// A series that is only measured.
class Measured final : public bs::FactorialSeries {
public:
    Measured(std::size_t w, const bs::FactorialSeriesParameters& parameters) : FactorialSeries(w, parameters) {}
};

TEST(FactorialSeries, TermsAndPrecisionAreExactAtAnyLength) {
    const zvp::DoubleDouble c = zvp::DoubleDouble::parse("32.65445004176851599077913804969300490729");
    for (const std::size_t w : {std::size_t{1}, std::size_t{11}, std::size_t{103'811}, std::size_t{10'381'026},
                                std::size_t{103'810'252'965'230}}) {
        const Measured series(w, {c, zvp::DoubleDouble(30), zvp::DoubleDouble(3), 41, 8, true});
        Mpfr terms(c), unit(zvp::nats_per_word());
        mpfr_div(terms.x, unit.x, terms.x, MPFR_RNDN);
        mpfr_mul_ui(terms.x, terms.x, w, MPFR_RNDN);
        mpfr_add_d(terms.x, terms.x, 1.5, MPFR_RNDN);
        EXPECT_EQ(series.N, mpfr_get_ui(terms.x, MPFR_RNDD)) << w;
        for (const std::uint64_t x : {std::uint64_t{0}, series.N / 3, series.N - 1, series.N}) {
            Mpfr words(c);
            mpfr_mul_ui(words.x, words.x, series.N - x, MPFR_RNDN);
            mpfr_div(words.x, words.x, unit.x, MPFR_RNDN);
            EXPECT_EQ(series.precision_words(x), mpfr_get_ui(words.x, MPFR_RNDD) + 1) << w << " " << x;
            EXPECT_LT(error_bits(series.log_remaining(x) * zvp::words_per_nat(), words), -95) << w << " " << x;
        }
    }
}

} // namespace
} // namespace test
