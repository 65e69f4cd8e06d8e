#pragma once
// The check of a product: what its coefficients must be, taken as one polynomial, at one point of the field modulo
// q = 2^31 - 1.
//
// With a_i and b_j the coefficients of the operands, integers, those of the product are exact integers, too:
// c_t = sum of a_i b_j over i + j = t modulo L, L = 2^k. At any point r, with what has folded taken out,
//
//     sum of c_t r^t  =  A(r) B(r) - (r^L - 1) * sum over i + j >= L of a_i b_j r^(i + j - L)        modulo q.
//
// A fault that leaves some coefficient wrong by no multiple of q makes both sides differ, but for at most L - 1 of the q
// points: the difference is a polynomial in r. The point is a primitive root, far from the powers of two by which a flipped
// bit spreads.
//
// A form carries the residues of its operand's coefficients: that of coefficient i in the upper 31 bits of the top word
// of its element i, whose lowest bit is the element's own. So a form that is kept, or wrong, is checked wherever it goes.

#include "multiply/hybrid/element_passes.h"

namespace zvp {

/// A primitive root. (S. K. Park, K. W. Miller, P. K. Stockmeyer, "Technical Correspondence", Communications of the ACM 36
/// (1993).)
inline constexpr std::uint32_t check_point = 48271;

/// The top word of a form's element: 1 for the value 2^N.
constexpr bool is_minus_one(RingWord top) { return top % 2 != 0; }

/// Where the residues of an operand's coefficients come from: its words, or, without words, its form.
struct ResidueSource {
    const RingWord* form;
    const RingWord* words;
    std::size_t length;
};

/// Puts the residues of the coefficients first .. first + count - 1 of the AL words at A into the elements of their form
/// X, which is canonical.
void store_residues(const HybridJob& job, RingWord* X, const RingWord* A, std::size_t AL, std::uint64_t first,
                    std::uint64_t count);

/// The sum that the coefficients of the product must have at check_point; of the square of a if b is null. Uses the scratch
/// of all tasks.
std::uint32_t expected_residue(const HybridJob& job, const ResidueSource& a, const ResidueSource* b);

} // namespace zvp
