#pragma once
// Division of long arrays of 64-bit limbs by a word, in four lanes.
//
// What bounds a division limb by limb is the chain from one remainder to the next. A long array is therefore cut into
// four pieces that are divided in step; the remainders that enter them come from sums of products, which no chain bounds.
// Each quotient limb still enters the chain of its lane, and a lane must end in the remainder that its neighbour began
// with: a wrong limb doesn't pass.

#include "multiply/words/shoup_divider.h"

namespace zvp {

/// T = floor(r * W^n / d), n limbs at any alignment; returns r * W^n mod d. Wants r < d. Lanes that contradict each other
/// are an AlgorithmFailedException, "Mismatching block residuals.".
c64i divide_limbs(const ShoupDivider<c64i>& D, void* T, std::size_t n, c64i r);

/// T = floor((r * W^n + A) / d); returns the remainder. T may be A. The same otherwise.
c64i divide_limbs(const ShoupDivider<c64i>& D, void* T, const void* A, std::size_t n, c64i r);

/// (r * W^n + A) mod d. Wants r < d.
c64i limbs_modulo(const ShoupDivider<c64i>& D, const void* A, std::size_t n, c64i r);

} // namespace zvp
