#pragma once
// Which words of a product a transform is asked for: the planner behind every product by kept forward forms.

#include "multiply/contract/transform.h"
#include "multiply/words/word_types.h"

#include <cstdint>

namespace zvp {

/// The positions [exp, exp + n()) of a product, which are the words s .. e - 1 of what the transform makes.
///
/// A transform of C whole words folds a longer product of P words: its top w = P - C words come to lie on the bottom w,
/// added (a cyclic transform) or subtracted (the floating-point one). The words in between, [base + w, base + P - w),
/// are those of the product, but for what the fold carries or borrows into the lowest of them: read as one number
/// modulo W^n, a window from base + w on may be one too high or one too low, and one that begins above that is wrong
/// only if the words below it, from base + w on, are all ones or all zeros. What doesn't fold ("BKT") has no such error.
///
/// A window that doesn't begin at word 0 may moreover be short by one or two units of its lowest word, for carries from
/// below: "HNT" leaves them out where it joins its coefficients. Hence the guard words of those who ask. Whole products
/// are exact.
struct ProductWindow {
    std::int64_t exp = 0;
    std::size_t s = 0;
    std::size_t e = 0; // s: nothing of the product lies in the range

    std::size_t n() const { return e - s; }

    /// The part of [ie, te) that lies in a product of P words with its lowest at position `base`, by `tr`. A word has
    /// `bits` bits; P is at most twice the words of `tr`. Throws ConvolutionTooSmallException
    /// ("BigFloatTransformR::params()") if the product folds and te is above the words that it leaves alone; ie may be
    /// below them: then the window begins above ie.
    static ProductWindow params(const Transform& tr, std::int64_t ie, std::int64_t te, std::int64_t base, std::size_t P,
                                unsigned bits = word_bits<wtype>);
};

} // namespace zvp
