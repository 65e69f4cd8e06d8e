#pragma once

#include "series/polynomials/simple_int.h"

#include <cstdint>
#include <initializer_list>
#include <vector>

namespace Polynomials {

/// A polynomial with integer coefficients. The zero polynomial is empty; any other has a top coefficient that isn't 0.
class IntegerPolynomial {
public:
    IntegerPolynomial() = default;

    /// Low power first. Top coefficients of 0 are removed.
    explicit IntegerPolynomial(std::vector<SimpleInt> coefficients_);
    explicit IntegerPolynomial(const std::vector<std::int64_t>& coefficients_);
    IntegerPolynomial(std::initializer_list<std::int64_t> coefficients_);

    bool is_empty() const { return coefficients.empty(); }
    bool is_constant() const { return coefficients.size() <= 1; }
    std::size_t size() const { return coefficients.size(); }       ///< degree + 1; 0 when empty
    std::size_t degree() const { return coefficients.size() - 1; } ///< not of an empty one
    const SimpleInt& top() const { return coefficients.back(); }   ///< not of an empty one
    const SimpleInt& operator[](std::size_t power) const { return coefficients[power]; }

    SimpleInt evaluate(const SimpleInt& x) const;

    /// q^degree times the value at p/q, by Horner's rule on the homogeneous form. 0 for the zero polynomial.
    SimpleInt evaluate(const SimpleInt& p, const SimpleInt& q) const;

    IntegerPolynomial derivative() const;
    IntegerPolynomial operator-() const;

    /// p(x + s), by binomial coefficients. Raises InvalidParametersException above degree 62.
    IntegerPolynomial shifted(const SimpleInt& s) const;

    /// The greatest common divisor of the coefficients, positive; 0 for the zero polynomial.
    SimpleInt content() const;

    /// Every coefficient divided by d. Raises AlgorithmFailedException if one isn't a multiple of d.
    IntegerPolynomial divided_by(const SimpleInt& d) const;

    IntegerPolynomial primitive_part() const { return is_empty() ? *this : divided_by(content()); }

    bool operator==(const IntegerPolynomial& other) const = default;

private:
    std::vector<SimpleInt> coefficients;
};

/// n! / (k! (n - k)!), exact; 0 for k > n. Raises InvalidParametersException for n > 62.
std::uint64_t binomial_coefficient_u64(unsigned n, unsigned k);

} // namespace Polynomials
