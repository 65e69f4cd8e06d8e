#pragma once
// A number's words seen by absolute position: word i of the array has the weight W^(exp + i).

#include "multiply/words/word_types.h"

namespace zvp {

struct WordWindow {
    const wtype* T;
    std::size_t L;
    std::int64_t exp;

    /// Copies the words of the positions pos .. pos + n - 1 to out; positions outside [exp, exp + L) hold zeros.
    void read_window(std::int64_t pos, std::size_t n, wtype* out) const;
};

/// T = the n words of A from position pos on + those of B + carry, on one thread; returns the carry out of the top.
/// T doesn't overlap A or B, but may start at the first of those words of A or of B.
bool add_windows(wtype* T, const WordWindow& A, const WordWindow& B, std::int64_t pos, std::size_t n, bool carry);

/// T = the n words of A from position pos on - those of B - borrow, on one thread; returns the borrow out of the top.
bool subtract_windows(wtype* T, const WordWindow& A, const WordWindow& B, std::int64_t pos, std::size_t n, bool borrow);

} // namespace zvp
