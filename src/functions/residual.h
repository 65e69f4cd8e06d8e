#pragma once
// The residual of a Newton step, and the proof in it that the estimate it starts from is right.
//
// An estimate of precision q makes a product, A F or A F^2, that differs from 1 by less than 18 W^-q, the largest of
// the bounds that the functions' headers prove. A transform, memory or processor that did wrong on the way leaves a
// product that doesn't, and the step throws AlgorithmFailedException: no step is done again. The test allows
// residual_limit W^-q: of what passes it, the step's error, its square, is below 2^20 W^-2q <= 2^-12 W^-p, less than a
// guard word.
//
// Where the words above W^(2-q) wrap around, the word at position 1-q stands for them: an estimate off by D makes the
// product off by A D, whose words are as good as random. What gets by has one chance in 2^31, unless A is long and its
// words are nearly all zeros, or the estimate is off by a power of two alone. The last step therefore looks at the whole
// product, by residues (step_watch.h).

#include "numbers/big_float.h"

#include <cstdint>

namespace zvp {

inline constexpr wtype residual_limit = 1024;

/// Whether |X| < residual_limit * W^pos.
inline bool is_residual(const BigFloat& X, std::int64_t pos) {
    return X.L == 0 || X.top() <= pos || (X.top() == pos + 1 && X.T[X.L - 1] < residual_limit);
}

/// In a dry run: E is as long as a number below W^top may be, from the same lowest word on.
void cut_dry(BigFloat& E, std::int64_t top);

/// In a dry run: X, of which only the length is right, lies below W^top.
inline void place_dry(BigFloat& X, std::int64_t top) {
    if (is_dry(X.buffer)) X.exp = top - static_cast<std::int64_t>(X.L);
}

/// Which side of 1 the product is on.
enum class Estimate { under, over };

/// One step's check: the name of its run for the exception, and the precision of the estimate.
struct ResidualCheck {
    const char* function;
    std::size_t q;

    /// T holds the product down to some position: T = |1 - product|, and the side.
    Estimate take_whole(BigFloat& T, const ParallelContext& ctx) const;

    /// T holds the product's words below `eps`; words above mean nothing. The word at eps - 1 is all ones if the
    /// product is just below 1, zero if it is just above. T = |1 - product|, and the side.
    Estimate take_window(BigFloat& T, std::int64_t eps, const ParallelContext& ctx) const;

private:
    Estimate take(BigFloat& T, Estimate side, const ParallelContext& ctx) const;
    void check_bound(const char* side, const BigFloat& T) const;
    [[noreturn, gnu::cold]] void fail(wtype top) const;
};

/// T = F + R or F - R at precision p, by the side; then a unit of the lowest word more, if the number is longer than
/// asked for, so that it never ends exactly on a round value that the truth lies above. Returns whether there was one.
bool correct(BigFloat& T, Estimate side, std::size_t p, const ParallelContext& ctx, const BigFloat& F,
             const BigFloat& R);

/// T /= 2, exactly; a word longer at most.
void halve(BigFloat& T, const ParallelContext& ctx);

} // namespace zvp
