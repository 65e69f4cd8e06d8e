#pragma once
// The merges: the numbers of (a, b] from those of its halves. One file for each family.
//
// Every operand is transformed once. `left` and `right` lie in the storage of `out`, where the results go to the starts of
// the buffers: an operand is lost when the product that it isn't needed behind is written. `is_last` spares what only a
// later range would need. pars.M is room for a transform of the longest product + merge_spare words with two forms
// (TransformHelper). What the products throw passes through.
//
// The truncated kind keeps p + 2 words of each result, and cuts operands to as many.

#include "series/splitting/binary_bbp.h"
#include "series/splitting/brent_mcmillan_ab.h"
#include "series/splitting/common_p2b3.h"
#include "series/splitting/hyperdescent.h"

namespace zvp::BinarySplitting {

template <class Family, class Number>
using NumbersOf = typename Family::template Numbers<Number>;

template <class Family>
void merge(const MultiplyParameters& pars, NumbersOf<Family, ExactNumber>& left, NumbersOf<Family, ExactNumber>& right,
           NumbersOf<Family, ExactNumber>& out, bool is_last);

template <class Family>
void merge(const MultiplyParameters& pars, std::size_t p, NumbersOf<Family, BigFloat>& left,
           NumbersOf<Family, BigFloat>& right, NumbersOf<Family, BigFloat>& out, bool is_last);

/// The leaf of a family's series.
template <class Family>
void leaf(const typename Family::Series& series, const MultiplyParameters& pars,
          NumbersOf<Family, ExactNumber>& numbers, std::uint64_t a, std::uint64_t b);

} // namespace zvp::BinarySplitting
