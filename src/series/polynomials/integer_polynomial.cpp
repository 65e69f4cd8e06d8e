#include "series/polynomials/integer_polynomial.h"

#include "app/failure/exceptions.h"

#include <utility>

namespace Polynomials {

IntegerPolynomial::IntegerPolynomial(std::vector<SimpleInt> coefficients_) : coefficients(std::move(coefficients_)) {
    while (!coefficients.empty() && coefficients.back().is_zero()) coefficients.pop_back();
}

IntegerPolynomial::IntegerPolynomial(const std::vector<std::int64_t>& coefficients_)
    : IntegerPolynomial(std::vector<SimpleInt>(coefficients_.begin(), coefficients_.end())) {}

IntegerPolynomial::IntegerPolynomial(std::initializer_list<std::int64_t> coefficients_)
    : IntegerPolynomial(std::vector<SimpleInt>(coefficients_.begin(), coefficients_.end())) {}

SimpleInt IntegerPolynomial::evaluate(const SimpleInt& x) const {
    SimpleInt value;
    for (std::size_t i = size(); i-- > 0;) value = value * x + coefficients[i];
    return value;
}

SimpleInt IntegerPolynomial::evaluate(const SimpleInt& p, const SimpleInt& q) const {
    SimpleInt value, scale = 1;
    for (std::size_t i = size(); i-- > 0;) {
        value = value * p;
        value.add_product(coefficients[i], scale);
        scale = scale * q;
    }
    return value;
}

IntegerPolynomial IntegerPolynomial::derivative() const {
    std::vector<SimpleInt> result;
    for (std::size_t i = 1; i < size(); ++i)
        result.push_back(coefficients[i] * SimpleInt(static_cast<std::int64_t>(i)));
    return IntegerPolynomial(std::move(result));
}

IntegerPolynomial IntegerPolynomial::operator-() const {
    IntegerPolynomial result(*this);
    for (SimpleInt& c : result.coefficients) c = -c;
    return result;
}

IntegerPolynomial IntegerPolynomial::shifted(const SimpleInt& s) const {
    std::vector<SimpleInt> powers(size(), 1), result(size());
    for (std::size_t i = 1; i < size(); ++i) powers[i] = powers[i - 1] * s;
    for (std::size_t j = 0; j < size(); ++j)
        for (std::size_t k = 0; k <= j; ++k) {
            const auto binomial = binomial_coefficient_u64(static_cast<unsigned>(j), static_cast<unsigned>(k));
            result[k].add_product(coefficients[j] * SimpleInt::from_unsigned(binomial), powers[j - k]);
        }
    return IntegerPolynomial(std::move(result));
}

SimpleInt IntegerPolynomial::content() const {
    SimpleInt divisor;
    for (const SimpleInt& c : coefficients) {
        divisor = gcd(c, std::move(divisor));
        if (divisor == SimpleInt(1)) break;
    }
    return divisor;
}

IntegerPolynomial IntegerPolynomial::divided_by(const SimpleInt& d) const {
    IntegerPolynomial result(*this);
    if (d == SimpleInt(1)) return result;
    for (SimpleInt& c : result.coefficients) {
        DivMod step = divmod(c, d);
        if (!step.remainder.is_zero())
            throw zvp::AlgorithmFailedException("IntegerPolynomial::divided_by()",
                                                "Exact division yielded non-zero modulus.");
        c = std::move(step.quotient);
    }
    return result;
}

std::uint64_t binomial_coefficient_u64(unsigned n, unsigned k) {
    if (n > 62) throw zvp::InvalidParametersException("binomial_coefficient_u64()", "Cannot go beyond degree 62.");
    if (k > n) return 0;
    unsigned __int128 value = 1; // C(n, i) * (n - i) stays below 2^64 * 62
    for (unsigned i = 0; i < k; ++i) value = value * (n - i) / (i + 1);
    return static_cast<std::uint64_t>(value);
}

} // namespace Polynomials
