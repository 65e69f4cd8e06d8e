#pragma once
// Division of long arrays by one fixed word, without a divide instruction: quotient words come from a multiplication
// by a precomputed reciprocal of two words. (V. Shoup's way of reducing by a fixed modulus.)

#include "multiply/words/word_types.h"
#include "parallel/tasks/parallel_framework.h"

namespace zvp {

/// Divides by d, 1 < d < 2^(w-1), d not a power of two, w = bits of a word, W = 2^w.
/// Throws InvalidParametersException for any other d.
template <class Word>
struct ShoupDivider {
    explicit ShoupDivider(Word d);

    /// T = floor(r * W^n / d), n words; returns r * W^n mod d. Wants r < d (InvalidParametersException).
    Word divmod(Word* T, std::size_t n, Word r) const;

    /// T = floor((r * W^n + A) / d), n words; returns the remainder. T may be A. Wants r < d.
    Word divmod(Word* T, const Word* A, std::size_t n, Word r) const;

    /// (r * W^n + A) mod d. Wants r < d.
    Word mod(const Word* A, std::size_t n, Word r) const;

    /// W^k mod d.
    Word powmod(std::uint64_t k) const;

    Word d;
    Word negd;   // W - d
    Word inv_lo; // floor((W^2 - 1) / d), low and high word
    Word inv_hi;
};

extern template struct ShoupDivider<c32i>;
extern template struct ShoupDivider<c64i>;

/// T = floor(r * W^n / d); returns r * W^n mod d. In parallel each block starts from a remainder that is known without
/// dividing; a block that doesn't end in the remainder that its neighbour started from is an AlgorithmFailedException,
/// "Mismatching block residuals.".
c32i bp_div_ex(const ShoupDivider<c32i>& D, c32i* T, std::size_t n, c32i r, const ParallelContext& ctx);
c64i bp_div_ex(const ShoupDivider<c64i>& D, c64i* T, std::size_t n, c64i r, const ParallelContext& ctx);

/// T = floor((r * W^n + A) / d); returns the remainder. T may be A. Checked like bp_div_ex.
c32i bp_div_np(const ShoupDivider<c32i>& D, c32i* T, const c32i* A, std::size_t n, c32i r, const ParallelContext& ctx);
c64i bp_div_np(const ShoupDivider<c64i>& D, c64i* T, const c64i* A, std::size_t n, c64i r, const ParallelContext& ctx);

} // namespace zvp
