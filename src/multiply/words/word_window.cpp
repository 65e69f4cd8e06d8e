#include "multiply/words/word_window.h"

#include "multiply/words/word_loops.h"

#include <algorithm>
#include <array>

namespace zvp {

namespace {

/// A stretch of positions in which a window either has words or has none.
struct Piece {
    const wtype* words; // null: the operand has no words here
    std::size_t n;
};

/// The window's stretch from `pos` on, cut at n positions.
Piece piece_at(const WordWindow& window, std::int64_t pos, std::size_t n) {
    const std::int64_t end = pos + static_cast<std::int64_t>(n);
    const std::int64_t top = window.exp + static_cast<std::int64_t>(window.L);
    if (pos < window.exp) return {nullptr, static_cast<std::size_t>(std::min(end, window.exp) - pos)};
    if (pos >= top) return {nullptr, n};
    return {window.T + (pos - window.exp), static_cast<std::size_t>(std::min(end, top) - pos)};
}

/// T = A + carry.
bool copy_and_ripple(wtype* T, const wtype* A, std::size_t n, int c) {
    if (T != A) std::copy_n(A, n, T);
    return carry_ripple(c, T, n) != 0;
}

/// T = 0 - B - borrow, which is the complement of B plus 1 - borrow; no carry is a borrow.
bool negate_words(wtype* T, const wtype* B, std::size_t n, bool borrow) {
    std::transform(B, B + n, T, [](wtype x) { return ~x; });
    return borrow || carry_ripple(1, T, n) == 0;
}

bool add_pieces(wtype* T, const wtype* a, const wtype* b, std::size_t n, bool carry) {
    if (a && b) return add_words(T, a, b, n, carry);
    if (a || b) return copy_and_ripple(T, a ? a : b, n, carry);
    std::fill_n(T, n, wtype{0});
    return carry_ripple(carry, T, n) != 0;
}

bool subtract_pieces(wtype* T, const wtype* a, const wtype* b, std::size_t n, bool borrow) {
    if (a && b) return subtract_words(T, a, b, n, borrow);
    if (a) return copy_and_ripple(T, a, n, borrow ? -1 : 0);
    if (b) return negate_words(T, b, n, borrow);
    std::fill_n(T, n, borrow ? ~wtype{0} : wtype{0});
    return borrow;
}

/// Runs pieces(T, a, b, n, carry) over the stretches in which each operand either has words or has none: at most five.
template <class Pieces>
bool over_pieces(wtype* T, const WordWindow& A, const WordWindow& B, std::int64_t pos, std::size_t n, bool carry,
                 Pieces&& pieces) {
    while (n > 0) {
        const Piece a = piece_at(A, pos, n);
        const Piece b = piece_at(B, pos, n);
        const std::size_t length = std::min(a.n, b.n);
        carry = pieces(T, a.words, b.words, length, carry);
        T += length;
        pos += static_cast<std::int64_t>(length);
        n -= length;
    }
    return carry;
}

} // namespace

void WordWindow::read_window(std::int64_t pos, std::size_t n, wtype* out) const {
    while (n > 0) {
        const Piece piece = piece_at(*this, pos, n);
        if (piece.words)
            std::copy_n(piece.words, piece.n, out);
        else
            std::fill_n(out, piece.n, wtype{0});
        out += piece.n;
        pos += static_cast<std::int64_t>(piece.n);
        n -= piece.n;
    }
}

bool add_windows(wtype* T, const WordWindow& A, const WordWindow& B, std::int64_t pos, std::size_t n, bool carry) {
    return over_pieces(T, A, B, pos, n, carry, add_pieces);
}

bool subtract_windows(wtype* T, const WordWindow& A, const WordWindow& B, std::int64_t pos, std::size_t n,
                      bool borrow) {
    return over_pieces(T, A, B, pos, n, borrow, subtract_pieces);
}

} // namespace zvp
