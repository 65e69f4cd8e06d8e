#pragma once

#include "multiply/contract/multiply_algorithm.h"

namespace zvp {

/// "HNT": the hybrid number-theoretic transform, for products of up to 8795824586752 bits, by several tasks.
template <class Word>
const MultiplyAlgorithm<Word>& hnt_algorithm();

} // namespace zvp
