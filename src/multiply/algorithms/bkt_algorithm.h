#pragma once

#include "multiply/contract/multiply_algorithm.h"

namespace zvp {

/// "BKT": schoolbook and Karatsuba, for products of up to 65536 bits. Needs no tables and runs on the caller's thread.
template <class Word>
const MultiplyAlgorithm<Word>& bkt_algorithm();

} // namespace zvp
