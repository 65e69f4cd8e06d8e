#pragma once
// The numbers of a node, in both arithmetic kinds, as views of the same storage.

#include "digits/hash/hash_field.h"
#include "numbers/big_float.h"
#include "numbers/exact_float.h"

#include <array>
#include <cstddef>

namespace zvp::BinarySplitting {

using ExactNumber = ExactFloat<wtype>;
using LeafInt = BasicInt<wtype>;

/// A view of the same words; the residue goes over to those of the magnitude's words alone.
inline BigFloat as_float(const ExactNumber& A) {
    BigFloat view(A.buffer, A.capacity);
    if (A.L == 0) return view;
    view.T = A.T;
    view.L = A.L;
    view.exp = A.exp;
    view.sign = A.sign;
    view.hash = shift_words(A.sign ? normalize_hash(A.hash) : hash_negate(A.hash), -A.exp);
    view.watched = arithmetic_is_watched;
    return view;
}

/// A zero on the same storage, of which nothing is read.
inline ExactNumber as_exact_target(const BigFloat& A) { return ExactNumber(A.buffer, A.capacity); }

template <std::size_t n>
std::array<BigFloat, n> as_floats(const std::array<ExactNumber, n>& numbers) {
    std::array<BigFloat, n> views;
    for (std::size_t i = 0; i < n; ++i) views[i] = as_float(numbers[i]);
    return views;
}

template <std::size_t n>
std::array<ExactNumber, n> as_exact_targets(const std::array<BigFloat, n>& numbers) {
    std::array<ExactNumber, n> views;
    for (std::size_t i = 0; i < n; ++i) views[i] = as_exact_target(numbers[i]);
    return views;
}

} // namespace zvp::BinarySplitting
