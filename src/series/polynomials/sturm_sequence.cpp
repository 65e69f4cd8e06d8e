#include "series/polynomials/sturm_sequence.h"

#include "app/failure/exceptions.h"
#include "series/polynomials/polynomial_division.h"

#include <utility>

namespace Polynomials {
namespace {

/// What divides the pseudo-remainder of each step of the subresultant chain, as a magnitude: the signs of the chain's
/// polynomials change its factors by signs only.
class SubresultantDivisor {
public:
    /// For the remainder of a by b, called once for each step in turn.
    SimpleInt next(const IntegerPolynomial& a, const IntegerPolynomial& b) {
        const auto delta = static_cast<unsigned>(a.degree() - b.degree());
        const SimpleInt divisor = g * power(h, delta);
        g = b.top().abs();
        if (delta > 0) h = divmod(power(g, delta), power(h, delta - 1)).quotient;
        return divisor;
    }

private:
    SimpleInt g = 1;
    SimpleInt h = 1;
};

class FlipCounter {
public:
    void add(int sign) {
        if (first) {
            flips.first_sign = sign;
            first = false;
        } else if (sign != previous && previous != 0) {
            ++flips.count;
        }
        previous = sign;
    }
    const SignFlips& result() const { return flips; }

private:
    SignFlips flips;
    int previous = 0;
    bool first = true;
};

} // namespace

SturmSequence SturmSequence::generate(const IntegerPolynomial& p0, const IntegerPolynomial& p1) {
    if (p0.is_empty()) throw zvp::InvalidParametersException("SturmSequence::generate()", "Polynomial is zero.");
    SturmSequence sequence;
    SubresultantDivisor divisor;
    sequence.chain.push_back(p0);
    for (IntegerPolynomial current = p1; !current.is_empty();) {
        const IntegerPolynomial previous = sequence.chain.back();
        sequence.chain.push_back(current);
        if (current.is_constant()) break;
        IntegerPolynomial remainder = pseudo_remainder(previous, current);
        if (previous.size() >= current.size()) remainder = remainder.divided_by(divisor.next(previous, current));
        current = -remainder;
    }
    return sequence;
}

SignFlips SturmSequence::sign_flips(const SimpleInt& x) const {
    FlipCounter counter;
    for (const IntegerPolynomial& p : chain) counter.add(p.evaluate(x).sign());
    return counter.result();
}

std::size_t SturmSequence::sign_flips_minus_infinity() const {
    FlipCounter counter;
    for (const IntegerPolynomial& p : chain) counter.add(p.degree() % 2 ? -p.top().sign() : p.top().sign());
    return counter.result().count;
}

std::size_t SturmSequence::sign_flips_plus_infinity() const {
    FlipCounter counter;
    for (const IntegerPolynomial& p : chain) counter.add(p.top().sign());
    return counter.result().count;
}

} // namespace Polynomials
