#pragma once
// The check of exact results: their words against the residues that came from the operands' residues all the way up from
// the leaves.

#include "series/splitting/family_numbers.h"

#include <cstdint>
#include <span>

namespace zvp::BinarySplitting {

/// Throws BSRModularCheckFailedException with a, b and the differences of all numbers, where one isn't zero modulo
/// 2^61 - 1. Cost: a pass over the words, as min(tds, ..) tasks. A wrong word passes with a chance of 2^-61.
void zvc_Verify_BSR(std::uint64_t a, std::uint64_t b, std::span<const ExactNumber> numbers, const ParallelContext& ctx);

/// The same for truncated numbers that are watched; others pass.
void zvc_Verify_BSR(std::uint64_t a, std::uint64_t b, std::span<const BigFloat> numbers, const ParallelContext& ctx);

} // namespace zvp::BinarySplitting
