#pragma once

#include "series/polynomials/sturm_sequence.h"

#include <vector>

namespace Polynomials {

/// `count` distinct zeros in the open interval (low, high) of length 1.
struct UnitInterval {
    SimpleInt low;
    SimpleInt high;
    std::size_t count;
};

/// Appends to `out` the unit intervals that hold zeros of chain[0] in (low, high), in rising order, given the chain's
/// flips at both ends. high - low is a power of two. Throws a point as a SimpleInt if it probes a zero there, which ends
/// the search: an integer zero inside (low, high) is always found so. Raises AlgorithmFailedException if the
/// counts contradict each other.
void isolate_real_zeros(const SturmSequence& chain, std::vector<UnitInterval>& out, const SimpleInt& low,
                        std::size_t flips_low, const SimpleInt& high, std::size_t flips_high);

/// The same for all real zeros of chain[0], from bounds +-2^k that enclose them.
std::vector<UnitInterval> isolate_real_zeros(const SturmSequence& chain);

} // namespace Polynomials
