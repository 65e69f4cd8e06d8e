#pragma once
// The sizes, in nats, of products over term indices, |Q(1) Q(2) ... Q(x)|, in closed form. Every sizer S is fixed up to a
// constant and used in differences; estimates of products over (a, b] are S(b) - S(a).

#include "series/double_double/double_double.h"
#include "series/polynomials/root_map.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Polynomials {

using zvp::DoubleDouble;

/// ln|(1 - a)(2 - a) ... (x - a)| for a real zero a away from 0, m times.
struct PochhammerRealSizer {
    PochhammerRealSizer(const DoubleDouble& a_, std::size_t multiplicity);

    /// The term at x, without m and C: g(t) at t = x - a >= -1/2; -g(-1 - t) left of that, by reflection. Each branch has
    /// ln|t|'s factor vanish before t = -1/2, where the product passes the zero: finite everywhere. The step between the
    /// branches is wrong by less than 1 nat.
    double value_double(double x) const;
    DoubleDouble value(const DoubleDouble& x) const;

    bool use_dd; // the terms are so large that a double would lose what their differences hold
    double a_double;
    DoubleDouble a;
    DoubleDouble C; // the term at x = 0
    double m;
};

/// ln of the product of (k - a)^2 + b^2 over k = 1 ... x, for a pair of zeros a +- ib, m times.
struct PochhammerComplexPairSizer {
    /// Raises InvalidParametersException if a^2 + b^2 < 1 or |b| > 2^50.
    PochhammerComplexPairSizer(const DoubleDouble& a_, const DoubleDouble& b_, std::size_t multiplicity);

    /// h(x - a), without m and C: h(t) = 2b atan2(-b, t) + (2t + 1) (ln(t^2 + b^2) / 2 - 1), the logarithm 0 where its
    /// argument is at most 1.
    double value_double(double x) const;
    DoubleDouble value(const DoubleDouble& x) const;

    bool use_dd;
    double a_double, b_double;
    DoubleDouble a, b;
    DoubleDouble a_squared, b_squared, b_twice;
    DoubleDouble C;
    double m;
};

/// The zeros close to 0, taken as lying there: `degree` factors k at each index k.
struct FactorialDegree {
    DoubleDouble degree;
    double degree_double;
};

/// S(x) = lead * x + degree * g(x) + the terms of all other zeros, g as zvp::stirling(). Off from the true logarithm, on a
/// range, by a nat or two for each zero and half of ln b, since the zeros are known to unit boxes.
class PolynomialTermSizer {
public:
    /// `lead_` is the logarithm of the leading coefficient and of whatever else multiplies each term. Raises
    /// InvalidParametersException for a box below the real axis or for what a pair's record refuses.
    PolynomialTermSizer(const DoubleDouble& lead_, const RootMap& zeros);

    double S_double(std::uint64_t x) const;
    DoubleDouble S(std::uint64_t x) const;

    /// S(b) - S(a), without the constants of the terms.
    double range_double(std::uint64_t a, std::uint64_t b) const;
    DoubleDouble range(std::uint64_t a, std::uint64_t b) const;

    double lead_double;
    DoubleDouble lead;
    std::unique_ptr<FactorialDegree> factorial_degree; // null without zeros close to 0
    std::vector<PochhammerRealSizer> real_zeros;
    std::vector<PochhammerComplexPairSizer> complex_pairs;

private:
    void add_box(const RootBox& box, std::size_t multiplicity);
    void add_factorial(std::size_t multiplicity);
};

/// The sizer of the products of |polynomial(k)| * e^extra. `name` stands for the polynomial in messages: "Q(x)". Raises
/// InvalidParametersException if the polynomial is empty, zero at a positive integer, or of a degree above 62 with
/// complex zeros.
std::unique_ptr<PolynomialTermSizer> make_sizer(const std::string& name, const IntegerPolynomial& polynomial,
                                                const DoubleDouble& extra);

/// S(x) = degree * g(x) + q * x: products of factorials to a degree and powers of a constant.
struct FactorialSizer {
    double S_double(double x) const;
    DoubleDouble S(const DoubleDouble& x) const;

    DoubleDouble degree;
    DoubleDouble q; // nats of the constant per term
};

} // namespace Polynomials
