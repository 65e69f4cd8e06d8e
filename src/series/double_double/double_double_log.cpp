#include "series/double_double/double_double.h"
#include "series/double_double/size_units.h"

#include <array>
#include <cmath>

namespace zvp {
namespace {

constexpr int exact_terms = 12;
constexpr int all_terms = 24;

constexpr std::array<DoubleDouble, exact_terms> odd_reciprocals = [] {
    std::array<DoubleDouble, exact_terms> table;
    for (int k = 0; k < exact_terms; ++k) table[k] = DoubleDouble(1) / DoubleDouble(2 * k + 1);
    return table;
}();

// ln m = 2 (s + s^3/3 + s^5/5 + ...) with s = (m - 1) / (m + 1). For m in [2/3, 4/3], s^2 <= 1/25: the terms from s^49
// on are below 2^-117 of s, and those from s^25 on below 2^-60 of it, so that doubles hold them. m - 1 is exact but for a
// last bit, and the first term outweighs all others: the relative error stays that of a few operations, also near
// m = 1.
DoubleDouble log_of_mantissa(const DoubleDouble& m) {
    const DoubleDouble s = (m - DoubleDouble(1)) / (m + DoubleDouble(1));
    const DoubleDouble square = s * s;
    double tail = 0;
    for (int k = all_terms; k-- > exact_terms;) tail = tail * square.hi + 1.0 / (2 * k + 1);
    DoubleDouble sum = tail;
    for (int k = exact_terms; k-- > 0;) sum = sum * square + odd_reciprocals[k];
    sum *= s;
    return {2 * sum.hi, 2 * sum.lo};
}

} // namespace

DoubleDouble log(const DoubleDouble& a) {
    int exponent;
    if (std::frexp(a.hi, &exponent) < 2.0 / 3) --exponent; // the mantissa lies in [2/3, 4/3)
    const DoubleDouble mantissa(std::ldexp(a.hi, -exponent), std::ldexp(a.lo, -exponent));
    const DoubleDouble log_mantissa = log_of_mantissa(mantissa);
    if (exponent == 0) return log_mantissa;
    return ln_2() * DoubleDouble(exponent) + log_mantissa;
}

} // namespace zvp
