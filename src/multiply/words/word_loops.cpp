#include "multiply/words/word_loops.h"

#include "multiply/words/carry_chain.h"
#include "multiply/words/limb_kernels.h"

#include <cstdint>

namespace zvp {

namespace {

/// A c32i array whose limbs don't start on a multiple of 8 bytes: its first word goes alone, so that stores don't
/// straddle cache lines.
bool word_before_limbs(const c32i* T) { return reinterpret_cast<std::uintptr_t>(T) % 8 != 0; }

/// A chain over c32i words: step(i, carry) does word i, chain(i, limbs, carry) the words from i on as limbs.
template <class Carry, class Step, class Chain>
Carry words_as_limbs(const c32i* T, std::size_t n, Carry carry, Step&& step, Chain&& chain) {
    std::size_t i = 0;
    if (n > 0 && word_before_limbs(T)) step(i++, carry);
    const std::size_t limbs = (n - i) / 2;
    carry = static_cast<Carry>(chain(i, limbs, carry));
    i += 2 * limbs;
    if (i < n) step(i, carry);
    return carry;
}

c32i mul_step(c32i a, c32i x, c32i addend, c32i& carry) {
    const c64i v = c64i{a} * x + addend + carry;
    carry = static_cast<c32i>(v >> 32);
    return static_cast<c32i>(v);
}

template <class Word>
bool increment(Word* T, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i)
        if (++T[i] != 0) return false;
    return true;
}

template <class Word>
bool decrement(Word* T, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i)
        if (T[i]-- != 0) return false;
    return true;
}

template <class Word>
bool add_word_and_ripple(Word* T, std::size_t n, Word x) {
    if (n == 0) return x != 0;
    T[0] += x;
    return T[0] < x && increment(T + 1, n - 1);
}

template <class Word>
int ripple(int c, Word* T, std::size_t n) {
    if (c == 0 || n == 0) return c;
    if (c > 0) return add_word_and_ripple(T, n, static_cast<Word>(c));
    const Word borrow = static_cast<Word>(-c);
    const bool wrapped = T[0] < borrow;
    T[0] -= borrow;
    return wrapped && decrement(T + 1, n - 1) ? -1 : 0;
}

template <class Word>
std::size_t length_below(Word word, const Word* T, std::size_t n) {
    while (n > 0 && T[n - 1] == word) --n;
    return n;
}

} // namespace

bool add_words(c32i* T, const c32i* A, const c32i* B, std::size_t n, bool carry) {
    return words_as_limbs(
        T, n, carry, [&](std::size_t i, bool& c) { T[i] = add_step(A[i], B[i], c); },
        [&](std::size_t i, std::size_t limbs, bool c) { return limb_kernels().add(T + i, A + i, B + i, limbs, c); });
}

bool add_words(c64i* T, const c64i* A, const c64i* B, std::size_t n, bool carry) {
    return limb_kernels().add(T, A, B, n, carry);
}

bool subtract_words(c32i* T, const c32i* A, const c32i* B, std::size_t n, bool borrow) {
    return words_as_limbs(
        T, n, borrow, [&](std::size_t i, bool& b) { T[i] = subtract_step(A[i], B[i], b); },
        [&](std::size_t i, std::size_t limbs, bool b) {
            return limb_kernels().subtract(T + i, A + i, B + i, limbs, b);
        });
}

bool subtract_words(c64i* T, const c64i* A, const c64i* B, std::size_t n, bool borrow) {
    return limb_kernels().subtract(T, A, B, n, borrow);
}

bool add_word(c32i* T, std::size_t n, c32i x) { return add_word_and_ripple(T, n, x); }
bool add_word(c64i* T, std::size_t n, c64i x) { return add_word_and_ripple(T, n, x); }

c32i mul_word(c32i* T, const c32i* A, std::size_t n, c32i x, c32i carry) {
    return words_as_limbs(
        T, n, carry, [&](std::size_t i, c32i& c) { T[i] = mul_step(A[i], x, 0, c); },
        [&](std::size_t i, std::size_t limbs, c32i c) { return limb_kernels().mul(T + i, A + i, limbs, x, c); });
}

c64i mul_word(c64i* T, const c64i* A, std::size_t n, c64i x, c64i carry) {
    return limb_kernels().mul(T, A, n, x, carry);
}

c32i mul_add_word(c32i* T, const c32i* A, std::size_t n, c32i x, c32i carry) {
    return words_as_limbs(
        T, n, carry, [&](std::size_t i, c32i& c) { T[i] = mul_step(A[i], x, T[i], c); },
        [&](std::size_t i, std::size_t limbs, c32i c) { return limb_kernels().mul_add(T + i, A + i, limbs, x, c); });
}

c64i mul_add_word(c64i* T, const c64i* A, std::size_t n, c64i x, c64i carry) {
    return limb_kernels().mul_add(T, A, n, x, carry);
}

int carry_ripple(int c, c32i* T, std::size_t n) { return ripple(c, T, n); }
int carry_ripple(int c, c64i* T, std::size_t n) { return ripple(c, T, n); }

std::size_t top_length(c32i word, const c32i* T, std::size_t n) { return length_below(word, T, n); }
std::size_t top_length(c64i word, const c64i* T, std::size_t n) { return length_below(word, T, n); }

} // namespace zvp
