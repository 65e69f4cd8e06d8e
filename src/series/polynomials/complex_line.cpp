#include "series/polynomials/complex_line.h"

#include "app/failure/exceptions.h"
#include "series/polynomials/polynomial_division.h"

#include <utility>

namespace Polynomials {
namespace {

constexpr const char* inconsistent = "Sturm sequence returned inconsistent # of sign-flips.";

/// The part of q(i*t) that is real (first = 0) or imaginary (first = 1).
IntegerPolynomial part_on_imaginary_axis(const IntegerPolynomial& q, std::size_t first) {
    std::vector<SimpleInt> part(q.size());
    for (std::size_t k = first; k < q.size(); k += 2) part[k] = k % 4 < 2 ? q[k] : -q[k];
    return IntegerPolynomial(std::move(part));
}

/// The part of p(t + i*y) whose powers of i*y are even (first = 0) or odd (first = 1).
IntegerPolynomial part_beside_real_axis(const IntegerPolynomial& p, const SimpleInt& y, std::size_t first) {
    std::vector<SimpleInt> part(p.size());
    std::vector<SimpleInt> powers(p.size(), 1);
    for (std::size_t k = 1; k < p.size(); ++k) powers[k] = powers[k - 1] * y;
    for (std::size_t j = 0; j < p.size(); ++j)
        for (std::size_t k = first; k <= j; k += 2) {
            const auto binomial = binomial_coefficient_u64(static_cast<unsigned>(j), static_cast<unsigned>(k));
            const SimpleInt factor = p[j] * SimpleInt::from_unsigned(binomial);
            part[j - k].add_product(k % 4 < 2 ? factor : -factor, powers[k]);
        }
    return IntegerPolynomial(std::move(part));
}

} // namespace

ComplexLine::ComplexLine(const IntegerPolynomial& p, Direction direction_, const SimpleInt& offset_)
    : direction(direction_), offset(offset_) {
    if (direction == Direction::vertical) {
        const IntegerPolynomial q = p.shifted(offset);
        split_off_common_zeros(part_on_imaginary_axis(q, 0), part_on_imaginary_axis(q, 1));
    } else {
        split_off_common_zeros(part_beside_real_axis(p, offset, 0), part_beside_real_axis(p, offset, 1));
    }
}

void ComplexLine::split_off_common_zeros(const IntegerPolynomial& real, const IntegerPolynomial& imag) {
    IntegerPolynomial factor;
    if (!real.is_empty()) {
        parts = SturmSequence::generate(real, imag);
        if (parts.back().is_constant()) return;
        factor = parts.back().primitive_part();
        const bool flip = (real.top().sign() < 0) != (factor.top().sign() < 0);
        const IntegerPolynomial real_rest = exact_divide(real, factor), imag_rest = exact_divide(imag, factor);
        parts = flip ? SturmSequence::generate(-real_rest, -imag_rest) : SturmSequence::generate(real_rest, imag_rest);
    } else {
        factor = imag.primitive_part();
    }
    common = SturmSequence::generate(factor, factor.derivative());
    // Each zero of the common factor is one of p, and none of them repeats.
    if ((!real.is_empty() && !parts.back().is_constant()) || !common.back().is_constant())
        throw zvp::InvalidParametersException("ComplexLine()",
                                              "GCD(real, imag) is not 1. Input polynomial is not square-free.");
}

ComplexInt ComplexLine::point(const SimpleInt& t) const {
    return direction == Direction::horizontal ? ComplexInt{t, offset} : ComplexInt{offset, t};
}

std::ptrdiff_t ComplexLine::count_complex_zeros_inside(const SimpleInt& a, const SimpleInt& b) const {
    if (parts.size() < 2) return 0;
    const auto index =
        static_cast<std::ptrdiff_t>(parts.sign_flips(a).count) - static_cast<std::ptrdiff_t>(parts.sign_flips(b).count);
    if (static_cast<std::size_t>(index < 0 ? -index : index) > parts[0].degree())
        throw zvp::AlgorithmFailedException("count_complex_zeros_inside()", inconsistent);
    return index;
}

std::size_t ComplexLine::flips_on_line(const SimpleInt& t) const {
    const SignFlips flips = common.sign_flips(t);
    if (flips.first_sign == 0) throw point(t);
    return flips.count;
}

std::size_t ComplexLine::count_zeros_on_line(const SimpleInt& a, const SimpleInt& b) const {
    if (common.size() < 2) return 0;
    const std::size_t flips_a = flips_on_line(a), flips_b = flips_on_line(b);
    if (flips_a < flips_b) throw zvp::AlgorithmFailedException("count_complex_zeros_inside()", inconsistent);
    return flips_a - flips_b;
}

std::vector<UnitInterval> ComplexLine::isolate_zeros_on_line(const SimpleInt& a, const SimpleInt& b) const {
    std::vector<UnitInterval> zeros;
    if (common.size() < 2) return zeros;
    try {
        isolate_real_zeros(common, zeros, a, flips_on_line(a), b, flips_on_line(b));
    } catch (const SimpleInt& t) {
        throw point(t);
    }
    return zeros;
}

} // namespace Polynomials
