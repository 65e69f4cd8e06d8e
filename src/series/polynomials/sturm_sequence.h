#pragma once
// Sturm's chain of two polynomials: p0, p1, and every further one the negative remainder of the two before it, up to a
// positive factor. With V(x) the number of sign changes along the chain at x, V(a) - V(b) is the Cauchy index of
// p1/p0 over (a, b): its poles with a jump from -infinity to +infinity less those with the opposite jump. For p1 = p0' that
// is the number of distinct real zeros. The last polynomial is the greatest common divisor, up to a constant factor.

#include "series/polynomials/integer_polynomial.h"

#include <vector>

namespace Polynomials {

/// Each step down the chain where the sign differs from the one before and that one isn't 0. Where p0 is 0 and p1 isn't,
/// the count is the one for a p0 of p1's sign: p1/p0 counts as +infinity there.
struct SignFlips {
    std::size_t count = 0;
    int first_sign = 0; // of p0 at the point: 0 if the point is a zero of it
};

class SturmSequence {
public:
    SturmSequence() = default;

    /// Coefficients grow by a fixed number of bits with each step, by the divisions of the subresultant chain
    /// (H. Cohen, "A Course in Computational Algebraic Number Theory", 1993, algorithm 3.3.1). An empty p1 gives p0
    /// alone. Raises InvalidParametersException if p0 is empty.
    static SturmSequence generate(const IntegerPolynomial& p0, const IntegerPolynomial& p1);

    SignFlips sign_flips(const SimpleInt& x) const;
    std::size_t sign_flips_minus_infinity() const;
    std::size_t sign_flips_plus_infinity() const;

    std::size_t size() const { return chain.size(); }
    const IntegerPolynomial& operator[](std::size_t i) const { return chain[i]; }
    const IntegerPolynomial& back() const { return chain.back(); }

private:
    std::vector<IntegerPolynomial> chain;
};

} // namespace Polynomials
