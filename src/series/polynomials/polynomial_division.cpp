#include "series/polynomials/polynomial_division.h"

#include "app/failure/exceptions.h"
#include "series/polynomials/sturm_sequence.h"

#include <utility>

namespace Polynomials {
namespace {

std::vector<SimpleInt> coefficients_of(const IntegerPolynomial& p) {
    std::vector<SimpleInt> result;
    for (std::size_t i = 0; i < p.size(); ++i) result.push_back(p[i]);
    return result;
}

void require_divisor(const IntegerPolynomial& b) {
    if (b.is_empty()) throw zvp::ArithmeticException("IntegerPolynomial::divmod()", "Divide by zero.");
}

void scale_all(std::vector<SimpleInt>& coefficients, const SimpleInt& factor) {
    for (SimpleInt& c : coefficients) c = c * factor;
}

} // namespace

PolynomialDivMod divmod(const IntegerPolynomial& a, const IntegerPolynomial& b) {
    require_divisor(b);
    PolynomialDivMod result{{}, {}, 1};
    std::vector<SimpleInt> rest = coefficients_of(a);
    std::vector<SimpleInt> quotient(a.size() < b.size() ? 0 : a.size() - b.size() + 1);
    while (rest.size() >= b.size()) {
        const std::size_t position = rest.size() - b.size();
        DivMod step = divmod(rest.back(), b.top());
        if (!step.remainder.is_zero()) {
            const SimpleInt factor = divmod(b.top(), gcd(rest.back(), b.top())).quotient.abs();
            scale_all(rest, factor);
            scale_all(quotient, factor);
            result.scale = result.scale * factor;
            step = divmod(rest.back(), b.top());
        }
        for (std::size_t i = 0; i < b.size(); ++i) rest[position + i].sub_product(step.quotient, b[i]);
        quotient[position] = std::move(step.quotient);
        rest.pop_back();
    }
    result.quotient = IntegerPolynomial(std::move(quotient));
    result.remainder = IntegerPolynomial(std::move(rest));
    return result;
}

IntegerPolynomial pseudo_remainder(const IntegerPolynomial& a, const IntegerPolynomial& b) {
    require_divisor(b);
    std::vector<SimpleInt> rest = coefficients_of(a);
    bool flipped = false;
    while (rest.size() >= b.size()) {
        const std::size_t position = rest.size() - b.size();
        const SimpleInt top = std::move(rest.back());
        rest.pop_back();
        scale_all(rest, b.top());
        flipped ^= b.top().sign() < 0;
        if (!top.is_zero())
            for (std::size_t i = 0; i + 1 < b.size(); ++i) rest[position + i].sub_product(top, b[i]);
    }
    const IntegerPolynomial remainder(std::move(rest));
    return flipped ? -remainder : remainder;
}

IntegerPolynomial exact_divide(const IntegerPolynomial& a, const IntegerPolynomial& b) {
    constexpr const char* name = "IntegerPolynomial::exact_divide()";
    PolynomialDivMod result = divmod(a, b);
    if (!result.remainder.is_empty())
        throw zvp::AlgorithmFailedException(name, "Exact division yielded non-zero modulus.");
    if (result.scale != SimpleInt(1)) throw zvp::AlgorithmFailedException(name, "Scale is not 1.");
    return std::move(result.quotient);
}

IntegerPolynomial gcd(const IntegerPolynomial& a, const IntegerPolynomial& b) {
    const IntegerPolynomial common =
        a.is_empty() ? b.primitive_part() : SturmSequence::generate(a, b).back().primitive_part();
    return !common.is_empty() && common.top().sign() < 0 ? -common : common;
}

} // namespace Polynomials
