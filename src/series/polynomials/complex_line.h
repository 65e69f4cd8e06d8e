#pragma once

#include "series/polynomials/real_zeros.h"

#include <vector>

namespace Polynomials {

/// A square-free polynomial on a line of the complex plane, z = t + i*offset or z = offset + i*t: its real and its
/// imaginary part as polynomials in t.
///
/// What both parts have in common is divided out: the zeros of p that lie on the line or mirror each other in it. The
/// direction of the rest, as a point of the plane, follows p's except for a half turn at each zero on the line, so that
/// its Cauchy index counts the half turns of p along the line, passing zeros as if through their middle.
class ComplexLine {
public:
    enum class Direction { horizontal, vertical };

    /// Raises InvalidParametersException if p isn't square-free in a way that the line shows, or if its degree is above
    /// 62. p isn't empty.
    ComplexLine(const IntegerPolynomial& p, Direction direction_, const SimpleInt& offset_);

    /// The Cauchy index of Im p / Re p from t = a to t = b > a: the half turns of p along the line, clockwise ones
    /// positive. Where Re p is 0 at an end, the ratio there counts as +infinity: two edges that meet there agree, and
    /// the turns of a closed path come out whole. Raises AlgorithmFailedException if the index is beyond the degree.
    std::ptrdiff_t count_complex_zeros_inside(const SimpleInt& a, const SimpleInt& b) const;

    /// The zeros of p on the line between a and b, both exclusive. Throws the point as a ComplexInt if a zero lies at an
    /// end. Raises AlgorithmFailedException if the counts contradict each other.
    std::size_t count_zeros_on_line(const SimpleInt& a, const SimpleInt& b) const;

    /// The same zeros as unit intervals of t. Throws a ComplexInt if one has an integer t. b - a is a power of two.
    std::vector<UnitInterval> isolate_zeros_on_line(const SimpleInt& a, const SimpleInt& b) const;

private:
    ComplexInt point(const SimpleInt& t) const;
    std::size_t flips_on_line(const SimpleInt& t) const;
    void split_off_common_zeros(const IntegerPolynomial& real, const IntegerPolynomial& imag);

    Direction direction;
    SimpleInt offset;
    SturmSequence parts;  // of the real and the imaginary part without common factor; empty if the real part is 0
    SturmSequence common; // of the common factor and its derivative; empty if it's constant
};

} // namespace Polynomials
