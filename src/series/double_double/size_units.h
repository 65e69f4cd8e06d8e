#pragma once
// Sizes of numbers are natural logarithms of their magnitudes (nats). The factors between nats and words of 32 bits,
// decimal digits and bits:

#include "series/double_double/double_double.h"

namespace zvp {

const DoubleDouble& ln_2();           // nats per bit
const DoubleDouble& nats_per_word();  // 32 ln 2
const DoubleDouble& words_per_nat();  // 1 / (32 ln 2)
const DoubleDouble& digits_per_nat(); // log10 e

} // namespace zvp
