#pragma once
// Reference values of 400 bits.

#include "series/double_double/double_double.h"

#include <mpfr.h>

#include <cmath>

namespace test {

class Mpfr {
public:
    Mpfr(double value = 0) : Mpfr(zvp::DoubleDouble(value)) {}
    Mpfr(const zvp::DoubleDouble& value) {
        mpfr_init2(x, 400);
        mpfr_set_d(x, value.hi, MPFR_RNDN);
        mpfr_add_d(x, x, value.lo, MPFR_RNDN);
    }
    Mpfr(const Mpfr& other) : Mpfr() { mpfr_set(x, other.x, MPFR_RNDN); }
    Mpfr& operator=(const Mpfr& other) {
        mpfr_set(x, other.x, MPFR_RNDN);
        return *this;
    }
    ~Mpfr() { mpfr_clear(x); }

    double to_double() const { return mpfr_get_d(x, MPFR_RNDN); }

    mpfr_t x;
};

/// log2 of |got - expected| / |expected|; -infinity where they agree.
inline double error_bits(const zvp::DoubleDouble& got, const Mpfr& expected) {
    Mpfr difference(got);
    mpfr_sub(difference.x, difference.x, expected.x, MPFR_RNDN);
    if (mpfr_zero_p(difference.x)) return -INFINITY;
    if (mpfr_zero_p(expected.x)) return INFINITY;
    mpfr_div(difference.x, difference.x, expected.x, MPFR_RNDN);
    return std::log2(std::fabs(difference.to_double()));
}

} // namespace test
