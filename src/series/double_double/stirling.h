#pragma once
// The size of a factorial, by which the series' term sizers estimate products over term indices.

#include "series/double_double/double_double.h"

namespace zvp {

/// g(x) = (x + 1/2) ln|x| - x - (1 - ln(2 pi) / 2), in nats: ln(x!) - 1 by Stirling's formula, for x >= 1 too small by
/// less than 1/(12 x). The constant cancels in differences g(b) - g(a), the only use of g. x >= -1/2. g(0) is
/// ln(0!) - 1 = -1, where the formula has no value, so that g(x) - g(0) is the size of the whole product 1 * 2 * ... * x.
double stirling(double x);

/// The same in double-double. Its constant has 41 decimals.
DoubleDouble stirling(const DoubleDouble& x);

} // namespace zvp
