#include "series/double_double/double_double.h"

#include <cmath>

namespace zvp {
namespace {

constexpr double pi_hi = 0x1.921fb54442d18p+1;
constexpr double pi_lo = 0x1.1a62633145c07p-53;
constexpr DoubleDouble half_pi(pi_hi / 2, pi_lo / 2);
constexpr DoubleDouble pi(pi_hi, pi_lo);

// Sine and cosine of |angle| <= pi/4 by their Taylor series to angle^28: 0.79^29 / 29! < 2^-112.
void sine_and_cosine(const DoubleDouble& angle, DoubleDouble& sine, DoubleDouble& cosine) {
    const DoubleDouble square = angle * angle;
    sine = cosine = DoubleDouble(1);
    for (int k = 28; k >= 2; k -= 2) {
        cosine = DoubleDouble(1) - cosine * square / DoubleDouble(k * (k - 1));
        sine = DoubleDouble(1) - sine * square / DoubleDouble(k * (k + 1));
    }
    sine *= angle;
}

// The angle of (x, y) for x >= |y|, x > 0. A double's angle t is off by e < 2^-52 |t|; turning the point back by t
// leaves the angle e itself, whose tangent is e to far more than the bits wanted.
DoubleDouble small_angle(const DoubleDouble& y, const DoubleDouble& x) {
    const double angle = std::atan2(y.hi, x.hi);
    DoubleDouble sine, cosine;
    sine_and_cosine(DoubleDouble(angle), sine, cosine);
    const DoubleDouble across = y * cosine - x * sine;
    const DoubleDouble along = x * cosine + y * sine;
    return DoubleDouble(angle) + across / along;
}

} // namespace

DoubleDouble atan2(const DoubleDouble& y, const DoubleDouble& x) {
    const DoubleDouble zero;
    if (x == zero && y == zero) return zero;
    if (abs(y) > abs(x)) {
        const DoubleDouble quarter = y > zero ? half_pi : -half_pi;
        return quarter - small_angle(y > zero ? x : -x, abs(y));
    }
    if (x > zero) return small_angle(y, x);
    return (y < zero ? -pi : pi) + small_angle(-y, -x);
}

} // namespace zvp
