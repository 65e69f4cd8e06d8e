#include "series/polynomials/root_map.h"

#include "app/raised.h"
#include "series/polynomials/gmp_support.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace Polynomials;
using test::Poly;
using test::simple;
using test::operator*;

mpz_class floor_of(const mpq_class& x) {
    mpz_class result;
    mpz_fdiv_q(result.get_mpz_t(), x.get_num_mpz_t(), x.get_den_mpz_t());
    return result;
}

/// The canonical map: a coordinate that is an integer is exact, any other lies in the unit interval around it.
class ExpectedZeros {
public:
    Poly polynomial{1};
    RootMap map;
    RootMap real_map;

    /// (q x - p)^m
    void add_rational(const mpz_class& p, const mpz_class& q, unsigned m) {
        multiply({-p, q}, m);
        const mpq_class x(p, q);
        add({low(x), high(x), 0, 0}, m);
    }

    /// (a x^2 + b x + c)^m with a > 0 and no rational zero.
    void add_quadratic(const mpz_class& a, const mpz_class& b, const mpz_class& c, unsigned m) {
        multiply({c, b, a}, m);
        const mpz_class discriminant = b * b - 4 * a * c;
        if (discriminant < 0) {
            // Imaginary part sqrt(-discriminant) / 2a: its floor is the root of the largest square below.
            mpq_class square(-discriminant, 4 * a * a);
            square.canonicalize();
            const mpq_class x(-b, 2 * a);
            const mpz_class y = sqrt(floor_of(square));
            add({low(x), high(x), simple(y), simple(y * y == square ? y : mpz_class(y + 1))}, m);
        } else {
            for (const int sign : {-1, 1}) {
                // The floor of (-b + sign * sqrt(discriminant)) / 2a, by the sign of the quadratic's values.
                mpf_class root(discriminant, 512);
                root = (sign * sqrt(root) - b) / (2 * a);
                const mpf_class floor_value = floor(root);
                const mpz_class x(floor_value);
                add({simple(x), simple(mpz_class(x + 1)), 0, 0}, m);
            }
        }
    }

private:
    void multiply(const Poly& factor, unsigned m) {
        for (unsigned i = 0; i < m; ++i) polynomial = polynomial * factor;
    }
    void add(const RootBox& box, unsigned m) {
        map[box] += m;
        if (box.imag_high.is_zero()) real_map[box] += m;
    }
    static SimpleInt low(mpq_class x) {
        x.canonicalize();
        return simple(floor_of(x));
    }
    static SimpleInt high(mpq_class x) {
        x.canonicalize();
        return x.get_den() == 1 ? low(x) : low(x) + SimpleInt(1);
    }
};

std::string text(const RootMap& map) {
    std::string result;
    for (const auto& [box, count] : map)
        result += '(' + box.real_low.to_string() + ' ' + box.real_high.to_string() + ")(" + box.imag_low.to_string()
                  + ' ' + box.imag_high.to_string() + ")*" + std::to_string(count) + ' ';
    return result;
}

void expect_found(const ExpectedZeros& expected) {
    const IntegerPolynomial p = simple(expected.polynomial);
    EXPECT_EQ(text(isolate_zeros(p)), text(expected.map));
    EXPECT_EQ(text(isolate_zeros(-p)), text(expected.map));
    EXPECT_EQ(text(isolate_real_zeros(p)), text(expected.real_map));
}

TEST(RootMap, RandomProductsOfLinesAndQuadraticsWithRepeatedFactors) {
    SCOPED_TRACE(test::seed_trace());
    std::mt19937_64 random(test::seed());
    const auto number = [&](int limit) { return static_cast<int>(random() % (2 * limit + 1)) - limit; };
    for (int i = 0; i < 150; ++i) {
        SCOPED_TRACE(i);
        ExpectedZeros expected;
        for (auto factors = 1 + random() % 5; factors > 0; --factors) {
            const unsigned m = random() % 4 ? 1 : 2 + random() % 2;
            const int size = random() % 4 ? 6 : 3000;
            const int a = 1 + std::abs(number(random() % 2 ? 3 : 0)), b = number(size), c = number(size);
            const long square = static_cast<long>(b) * b - 4L * a * c;
            const auto root = square < 0 ? 0 : std::lround(std::sqrt(static_cast<double>(square)));
            if (random() % 3 == 0 || root * root == square)
                expected.add_rational(c, a, m);
            else
                expected.add_quadratic(a, b, c, m);
        }
        expect_found(expected);
        if (HasFailure()) break;
    }
}

TEST(RootMap, ZerosOnCornersAndEdgesOfTheBoxes) {
    const struct {
        const char* where;
        std::vector<std::array<int, 4>> quadratics; // a, b, c, multiplicity
    } cases[] = {{"on the first rectangle's corner 1 + i, and its mirror image", {{1, -2, 2, 1}, {1, 2, 2, 1}}},
                 {"i, on its top edge", {{1, 0, 1, 1}}},
                 {"on the imaginary axis, between integers", {{1, 0, 2, 1}, {1, 0, 3, 2}, {1, 0, 7, 1}}},
                 {"1/2 + i, on a horizontal line between integers", {{4, -4, 5, 1}}},
                 {"on both sides of one line, and on it", {{4, -4, 5, 1}, {4, 4, 5, 1}, {1, 0, 2, 1}, {1, 0, 1, 1}}},
                 {"mirrored in x = 1 without lying on it", {{2, -2, 5, 1}, {2, -6, 9, 1}}},
                 {"exact and repeated three times", {{1, -6, 25, 3}}},
                 {"ten in one box", {{5, -5, 2, 1}, {7, -7, 3, 1}, {9, -9, 4, 1}, {11, -11, 5, 1}, {13, -13, 6, 1}}}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.where);
        ExpectedZeros expected;
        for (const auto& [a, b, constant, m] : c.quadratics) expected.add_quadratic(a, b, constant, m);
        expect_found(expected);
        // Real zeros on the bottom edge, at corners and between them.
        for (const auto& [p, q, m] : {std::array{0, 1, 2}, {1, 1, 1}, {-1, 1, 1}, {2, 1, 1}, {1, 3, 2}, {-5, 2, 1}})
            expected.add_rational(p, q, m);
        expect_found(expected);
    }
}

TEST(RootMap, ClustersAndGreatMagnitudes) {
    ExpectedZeros expected;
    for (int q = 1000; q < 1006; ++q) expected.add_rational(7 * q + 1, q, 1); // 7 + 1/q
    expected.add_rational(mpz_class(1) << 62, 1, 1);
    expected.add_rational(-(mpz_class(1) << 61) - 1, 2, 1);
    expected.add_quadratic(1, 0, mpz_class(1) << 61, 1);
    expected.add_quadratic(1000, -8001, 16005, 1); // both zeros near 4
    expect_found(expected);
}

// The zeros of (x + s)^62 + 3 lie on a circle; the one at the top has an exact real part.
TEST(RootMap, Degree62AgreesWithTheRootsOfUnity) {
    for (const int s : {0, -2}) {
        std::vector<std::int64_t> coefficients(63);
        coefficients[0] = 3, coefficients[62] = 1;
        RootMap expected;
        for (int k = 0; k < 31; ++k) {
            const double radius = std::pow(3.0, 1 / 62.0), angle = M_PI * (2 * k + 1) / 62;
            const auto x = static_cast<std::int64_t>(std::floor(radius * std::cos(angle)));
            const auto y = static_cast<std::int64_t>(std::floor(radius * std::sin(angle)));
            expected[k == 15 ? RootBox{-s, -s, y, y + 1} : RootBox{x - s, x + 1 - s, y, y + 1}] += 1;
        }
        EXPECT_EQ(text(isolate_zeros(IntegerPolynomial(coefficients).shifted(s))), text(expected)) << s;
    }
    ExpectedZeros many; // 62 rational zeros, 20 of them exact
    for (int i = 0; i < 62; ++i) many.add_rational(i - 31, 3, 1);
    EXPECT_EQ(text(isolate_zeros(simple(many.polynomial))), text(many.map));
}

TEST(RootMap, DegreesAtTheEnds) {
    EXPECT_TRUE(isolate_zeros({5}).empty());
    EXPECT_EQ(text(isolate_zeros({0, 1})), "(0 0)(0 0)*1 ");
    EXPECT_EQ(text(isolate_zeros({0, 0, 0, -4})), "(0 0)(0 0)*3 ");
    EXPECT_EQ(test::raised_by([] { isolate_zeros({}); }), "InvalidParametersException: Polynomial is zero.");
    std::vector<std::int64_t> coefficients(64);
    coefficients[0] = 3, coefficients[63] = 1;
    EXPECT_EQ(test::raised_by([&] { isolate_zeros(IntegerPolynomial(coefficients)); }),
              "InvalidParametersException: Cannot go beyond degree 62.");
    EXPECT_EQ(text(isolate_real_zeros(IntegerPolynomial(coefficients))), "(-2 -1)(0 0)*1 ");
}

} // namespace
