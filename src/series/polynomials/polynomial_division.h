#pragma once

#include "series/polynomials/integer_polynomial.h"

namespace Polynomials {

/// scale * a = quotient * b + remainder, the remainder of a lower degree than b.
struct PolynomialDivMod {
    IntegerPolynomial quotient;
    IntegerPolynomial remainder;
    SimpleInt scale; // positive; 1 where the division goes through in integers
};

/// Long division that scales a only where a coefficient isn't a multiple of b's top. Raises ArithmeticException if b is
/// empty.
PolynomialDivMod divmod(const IntegerPolynomial& a, const IntegerPolynomial& b);

/// The remainder of top(b)^(deg a - deg b + 1) * a by b, its sign flipped if that factor is negative: a positive multiple
/// of the rational remainder, by a factor that depends on the degrees and |top(b)| alone. a itself if it has the
/// lower degree. Raises ArithmeticException if b is empty.
IntegerPolynomial pseudo_remainder(const IntegerPolynomial& a, const IntegerPolynomial& b);

/// a / b where b divides a in integers: always so for a primitive b that divides a in rationals (Gauss). Raises
/// AlgorithmFailedException if it doesn't.
IntegerPolynomial exact_divide(const IntegerPolynomial& a, const IntegerPolynomial& b);

/// The greatest common divisor as a primitive polynomial with a positive top; b's for an empty a and the other way
/// round.
IntegerPolynomial gcd(const IntegerPolynomial& a, const IntegerPolynomial& b);

} // namespace Polynomials
