#pragma once
// The steps of Shoup's division: one word of quotient each.

#include "multiply/words/shoup_divider.h"

#include <type_traits>

namespace zvp {

template <class Word>
using DoubleWord = std::conditional_t<sizeof(Word) == 4, std::uint64_t, unsigned __int128>;

template <class Word>
inline Word high_word(DoubleWord<Word> x) {
    return static_cast<Word>(x >> word_bits<Word>);
}

template <class Word>
Word multiply_high(Word a, Word b) {
    return high_word<Word>(DoubleWord<Word>{a} * b);
}

/// For a remainder r below 2d, given with r - d modulo W: r mod d, and q + 1 where that took d away. As d < W/2, the top
/// bit of the difference tells. Either outcome is as likely as the other: compilers make a conditional move of it.
template <class Word>
[[gnu::always_inline]] inline void correct(Word& q, Word& r, Word reduced) {
    const bool kept = reduced >> (word_bits<Word> - 1) != 0;
    r = kept ? r : reduced;
    q = static_cast<Word>(q + !kept);
}

/// Replaces r by r * W mod d; returns floor(r * W / d). The estimate floor(r * inv / W) is at most one short.
template <class Word>
[[gnu::always_inline]] inline Word divide_step(const ShoupDivider<Word>& D, Word& r) {
    Word q = static_cast<Word>(multiply_high(r, D.inv_lo) + r * D.inv_hi);
    r = static_cast<Word>(D.negd * q);
    correct(q, r, static_cast<Word>(r + D.negd));
    return q;
}

/// Replaces r by (r * W + a) mod d; returns floor((r * W + a) / d).
///
/// The estimate is floor((r * W + a) * inv / W^2) without the lowest part of the product. As inv falls short of W^2 / d by
/// at most 1, the estimate of the exact fraction falls short by less than (r + 1) / W + 2 / W, which is below 1 with
/// r < d < W/2: it is the quotient or one short. What depends on `a` alone isn't part of the chain from r to r.
template <class Word>
[[gnu::always_inline]] inline Word divide_step(const ShoupDivider<Word>& D, Word& r, Word a) {
    const DoubleWord<Word> own = DoubleWord<Word>{a} * D.inv_hi + multiply_high(a, D.inv_lo);
    Word q = static_cast<Word>(high_word<Word>(DoubleWord<Word>{r} * D.inv_lo + own) + r * D.inv_hi);
    const Word product = static_cast<Word>(D.negd * q);
    r = static_cast<Word>(product + a);
    correct(q, r, static_cast<Word>(product + static_cast<Word>(a + D.negd)));
    return q;
}

/// A factor c < d with floor(c * W / d), for products modulo d.
template <class Word>
class ConstantFactor {
public:
    ConstantFactor(const ShoupDivider<Word>& D, Word factor) : negd(D.negd), c(factor) {
        Word unused = factor;
        ratio = divide_step(D, unused);
    }

    /// x * c mod d for any word x: floor(x * ratio / W) is the quotient or one short.
    Word times(Word x) const {
        Word unused = 0;
        Word r = static_cast<Word>(x * c + negd * multiply_high(x, ratio));
        correct(unused, r, static_cast<Word>(r + negd));
        return r;
    }

private:
    Word negd;
    Word c;
    Word ratio;
};

/// (a + b) mod d for a, b < d.
template <class Word>
Word add_mod(const ShoupDivider<Word>& D, Word a, Word b) {
    Word unused = 0;
    Word sum = static_cast<Word>(a + b);
    correct(unused, sum, static_cast<Word>(sum + D.negd));
    return sum;
}

} // namespace zvp
