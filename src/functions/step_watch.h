#pragma once
// The residues modulo 2^61 - 1 by which a Newton step watches its products and sums.
//
// A residual tells whether the estimate was right that a step began with. What goes wrong later in the step, in a kept
// form, in the product with it or in the sum, a residual can't tell; the residues can. Each number of a step has the
// residue that follows from those of the numbers it was made from, and the last one is compared with its words.
//
// A window of a product isn't enough for that, but the words around it still lie in the scratch (Transform::
// product_words()). Where the product P has folded onto C words, its length being more, they are Z with
//
//     P = Z + U (W^C + 1),  U = floor(K / W^C) + (-1, 0 or 1),
//
// for a step knows a number K that differs from P by little: 1 in an inverse, the numerator in a division. The words of Z
// above the window are K's again, but for a borrow or carry from below: were they others, the residual would be larger
// than its window shows.
//
// "HNT" shows no such words, since it checks its own products. There the numbers between products are compared instead.

#include "digits/hash/hash_field.h"
#include "functions/residual.h"
#include "numbers/transforms/big_float_transform.h"
#include "numbers/transforms/transform_helper.h"

#include <cstddef>
#include <cstdint>

namespace zvp {

/// A factor as it went into a product, cut. The residue is that of its magnitude, exponent included, as are all below.
struct WatchedFactor {
    std::int64_t exp = 0;
    std::size_t L = 0;
    std::uint64_t residue = 0;
};

/// A product of which a number holds the positions [low, te), as far as it has them.
struct WatchedProduct {
    std::int64_t exp = 0;     // base of the product
    std::size_t length = 0;   // in words, before folding
    std::size_t C = 0;        // words that it has folded onto; 0: not seen
    std::uint64_t total = 0;  // the product's residue over W^exp, by its factors
    std::uint64_t folded = 0; // that of Z
    std::uint64_t window = 0; // residue of the number
    std::uint64_t above = 0;  // of Z's words from te on, over W^te
};

/// One step's watch. Where it is off, as in a dry run, residues are 0 and nothing is checked. A mismatch throws AlgorithmFailedException in
/// the name of `function`.
class StepWatch {
public:
    /// Lower levels of fewer words than this aren't watched: the last one finds what they did wrong.
    static constexpr std::size_t least_words = 1000;

    StepWatch(const char* function_, const TransformHelper& helper_, bool on_);

    const bool on;
    const bool sees_products;

    /// X cut to its top `words` words. Of a watched number the residue is the one that it carries: words that were damaged
    /// at rest show in the product.
    WatchedFactor factor(const BigFloat& X, std::size_t words) const;

    /// The same of an X whose residue is known.
    WatchedFactor factor(const BigFloat& X, std::size_t words, std::uint64_t known) const;

    /// The same for an X that only a product can check: no residue where none is seen.
    WatchedFactor seen_factor(const BigFloat& X, std::size_t words) const;

    /// The residue of the words of X in the positions [from, to).
    std::uint64_t residue(const BigFloat& X, std::int64_t from = lowest, std::int64_t to = highest) const;

    /// T is the window [ie - 2, te) of the product that the helper has just made, no wider than the product. Unless it has
    /// folded, it is checked.
    WatchedProduct product(const BigFloat& T, const WatchedFactor& a, const WatchedFactor& b, std::int64_t ie,
                           std::int64_t te) const;

    /// The same product, folded or not, differs from K by less than W^(te - 1): the whole of it is checked by that, and its
    /// magnitude where it isn't seen.
    /// `carry`: by how much its words from te on differ from K's, -1, 0 or 1.
    void check_near(const WatchedProduct& product, std::int64_t te, const BigFloat& K, int carry) const;

    /// The same for K = 1, which the product is just below or just above.
    void check_near_one(const WatchedProduct& product, std::int64_t te, Estimate side) const;

    /// The residue of a residual: of t modulo W^pos, or of its complement, T still being whole: the words from pos on count
    /// for nothing.
    static std::uint64_t residual(std::uint64_t t, Estimate side, std::int64_t pos);

    /// T is F + R, or F - R if `minus`, from the position T.exp on, plus a unit there if it was nudged. T is watched from then
    /// on.
    void check_sum(BigFloat& T, bool minus, const BigFloat& F, std::uint64_t f, const BigFloat& R, std::uint64_t r,
                   bool nudged) const;

    /// T is the square of F from some position on; a carry of up to 2 from below may be missing. Returns its residue.
    std::uint64_t square(const BigFloat& T, const BigFloat& F, std::uint64_t f) const;

    /// X must have that residue; it is watched from then on.
    void carry(BigFloat& X, std::uint64_t expected) const;

    /// X has that residue, and is watched from then on.
    void check(BigFloat& X, std::uint64_t expected) const;

    /// The factor was X's top words: where no product has told, its residue must.
    void check_unseen(const BigFloat& X, const WatchedFactor& a) const;

    [[noreturn, gnu::cold]] void fail() const;

    static constexpr std::int64_t lowest = -(std::int64_t{1} << 62);
    static constexpr std::int64_t highest = std::int64_t{1} << 62;

private:
    /// The residue of a product's words, as it was made with them where it was.
    std::uint64_t made(const BigFloat& T) const { return T.watched ? shift_words(T.hash, T.exp) : residue(T); }

    const char* const function;
    const TransformHelper& helper;
};

inline std::uint64_t half_residue(std::uint64_t h) { return mul_mod(h, pow_two(-1)); }

} // namespace zvp
