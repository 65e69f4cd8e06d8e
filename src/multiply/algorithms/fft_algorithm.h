#pragma once

#include "multiply/contract/multiply_algorithm.h"

namespace zvp {

/// "FFT": the floating-point transform, for products of up to 2^34 bits. Runs on the caller's thread.
template <class Word>
const MultiplyAlgorithm<Word>& fft_algorithm();

} // namespace zvp
