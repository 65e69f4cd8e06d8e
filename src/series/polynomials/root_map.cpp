#include "series/polynomials/root_map.h"

#include "app/failure/exceptions.h"
#include "series/polynomials/complex_zeros.h"
#include "series/polynomials/polynomial_division.h"
#include "series/polynomials/real_zeros.h"

#include <utility>

namespace Polynomials {
namespace {

void merge(RootMap& map, const RootMap& found, std::size_t multiplicity) {
    for (const auto& [box, count] : found) map[box] += count * multiplicity;
}

RootMap isolate_real_zeros_square_free(const IntegerPolynomial& p) {
    RootMap map;
    for (const UnitInterval& zero : isolate_real_zeros(SturmSequence::generate(p, p.derivative())))
        map[{zero.low, zero.high, 0, 0}] += zero.count;
    return map;
}

IntegerPolynomial linear_factor(const SimpleInt& zero) { return IntegerPolynomial(std::vector<SimpleInt>{-zero, 1}); }

IntegerPolynomial quadratic_factor(const ComplexInt& zero) {
    const SimpleInt norm = zero.real * zero.real + zero.imag * zero.imag;
    return IntegerPolynomial(std::vector<SimpleInt>{norm, zero.real * SimpleInt(-2), 1});
}

/// Runs `isolate` on each factor; a zero that it throws is entered as exact and divided out, and it runs again.
RootMap collect_zeros(const IntegerPolynomial& p, RootMap (*isolate)(const IntegerPolynomial&)) {
    RootMap map;
    std::vector<SquareFreeFactor> work = square_free_factors(p);
    while (!work.empty()) {
        SquareFreeFactor factor = std::move(work.back());
        work.pop_back();
        try {
            merge(map, isolate(factor.polynomial), factor.multiplicity);
        } catch (const SimpleInt& zero) {
            map[{zero, zero, 0, 0}] += factor.multiplicity;
            work.push_back({exact_divide(factor.polynomial, linear_factor(zero)), factor.multiplicity});
        } catch (const ComplexInt& zero) {
            map[{zero.real, zero.real, zero.imag, zero.imag}] += factor.multiplicity;
            work.push_back({exact_divide(factor.polynomial, quadratic_factor(zero)), factor.multiplicity});
        }
    }
    return map;
}

} // namespace

std::vector<SquareFreeFactor> square_free_factors(const IntegerPolynomial& p) {
    if (p.is_empty()) throw zvp::InvalidParametersException("square_free_factors()", "Polynomial is zero.");
    if (p.size() <= 2) return {{p, 1}};
    std::vector<SquareFreeFactor> factors;
    // At multiplicity m: `distinct` has each zero that repeats m times or more once, `repeated` what is beyond m.
    IntegerPolynomial repeated = gcd(p, p.derivative());
    IntegerPolynomial distinct = exact_divide(p, repeated).primitive_part();
    for (std::size_t multiplicity = 1; !distinct.is_constant(); ++multiplicity) {
        IntegerPolynomial beyond = gcd(distinct, repeated);
        IntegerPolynomial factor = exact_divide(distinct, beyond);
        if (!factor.is_constant()) factors.push_back({std::move(factor), multiplicity});
        repeated = exact_divide(repeated, beyond);
        distinct = std::move(beyond);
    }
    return factors;
}

RootMap isolate_zeros(const IntegerPolynomial& p) { return collect_zeros(p, isolate_zeros_square_free); }

RootMap isolate_real_zeros(const IntegerPolynomial& p) { return collect_zeros(p, isolate_real_zeros_square_free); }

} // namespace Polynomials
