#pragma once

#include "series/polynomials/root_map.h"

#include <cstddef>

namespace Polynomials {

/// The zeros inside a closed path, from its index (the half turns of p around 0 along it, with each zero on the path
/// passed through its middle) and the zeros on the path, its `edge`: a zero inside makes two half turns, one on the
/// path makes one. Raises AlgorithmFailedException if they contradict each other.
std::size_t compute_inside_zeros(std::ptrdiff_t index, std::size_t edge);

/// All zeros of a square-free polynomial. Throws a zero that it probes and that lies exactly at an integer, as a
/// SimpleInt on the real axis and as a ComplexInt above it. Raises AlgorithmFailedException if counts contradict
/// each other, InvalidParametersException if p is empty, isn't square-free, or has complex zeros and a degree above 62.
RootMap isolate_zeros_square_free(const IntegerPolynomial& p);

} // namespace Polynomials
