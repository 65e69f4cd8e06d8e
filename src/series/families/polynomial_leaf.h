#pragma once
// The numbers of one term of a polynomial series.

#include "series/families/poly_data.h"
#include "series/splitting/family_numbers.h"

namespace zvp::BinarySplitting {

/// T = polynomial(k), by Horner's rule in 64-bit words, with its residue. Throws BufferTooSmallException in the name of
/// `function` unless T has two words for each coefficient.
void set_polynomial(const char* function, ExactNumber& T, const Coefficients& polynomial, std::uint64_t k);

/// T = -T.
void negate(ExactNumber& T);

} // namespace zvp::BinarySplitting
