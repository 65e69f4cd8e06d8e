#pragma once
// Exact integers and polynomials to and from GMP's.

#include "series/polynomials/integer_polynomial.h"
#include "support/seed.h"

#include <gmpxx.h>

#include <random>
#include <vector>

namespace test {

using Polynomials::IntegerPolynomial;
using Polynomials::SimpleInt;
using Poly = std::vector<mpz_class>; // low power first

inline SimpleInt simple(const mpz_class& value) {
    SimpleInt result;
    const mpz_class magnitude = abs(value);
    for (std::size_t i = mpz_size(magnitude.get_mpz_t()); i-- > 0;) {
        for (int bit = 0; bit < 64; ++bit) result.shift_left_1();
        result += SimpleInt::from_unsigned(mpz_getlimbn(magnitude.get_mpz_t(), static_cast<mp_size_t>(i)));
    }
    return value < 0 ? -result : result;
}

inline mpz_class gmp(const SimpleInt& value) { return mpz_class(value.to_string()); }

inline IntegerPolynomial simple(const Poly& p) {
    std::vector<SimpleInt> coefficients;
    for (const mpz_class& c : p) coefficients.push_back(simple(c));
    return IntegerPolynomial(std::move(coefficients));
}

inline Poly gmp(const IntegerPolynomial& p) {
    Poly result;
    for (std::size_t i = 0; i < p.size(); ++i) result.push_back(gmp(p[i]));
    return result;
}

inline Poly operator*(const Poly& a, const Poly& b) {
    Poly product(a.empty() || b.empty() ? 0 : a.size() + b.size() - 1);
    for (std::size_t i = 0; i < a.size(); ++i)
        for (std::size_t j = 0; j < b.size(); ++j) product[i + j] += a[i] * b[j];
    return product;
}

/// Up to `bits` bits, any sign, with runs of zeros and ones; sometimes 0, 1 or a power of two.
inline mpz_class random_integer(std::mt19937_64& random, unsigned bits) {
    static gmp_randclass state(gmp_randinit_default);
    static const bool seeded = (state.seed(seed()), true);
    (void)seeded;
    mpz_class value;
    const unsigned length = static_cast<unsigned>(random() % (bits + 1));
    switch (random() % 4) {
    case 0: value = state.get_z_bits(length); break;
    case 1: mpz_setbit(value.get_mpz_t(), length); break;
    default: {
        for (unsigned at = 0; at < length;) {
            const unsigned run = 1 + static_cast<unsigned>(random() % length);
            if (random() % 2)
                for (unsigned i = at; i < std::min(at + run, length); ++i) mpz_setbit(value.get_mpz_t(), i);
            at += run;
        }
    }
    }
    return random() % 2 ? value : mpz_class(-value);
}

} // namespace test
