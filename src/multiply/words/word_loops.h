#pragma once
// Word arithmetic on one thread: plain loops over arrays, without a context and without scratch. All results are exact.
//
// Lengths are in words. A target may be one of the operands (the same start), but may not overlap one otherwise.

#include "multiply/words/word_types.h"

namespace zvp {

/// T = A + B + carry on n words; carry is 0 or 1. Returns the carry out of the top.
bool add_words(c32i* T, const c32i* A, const c32i* B, std::size_t n, bool carry = false);
bool add_words(c64i* T, const c64i* A, const c64i* B, std::size_t n, bool carry = false);

/// T = A - B - borrow on n words. Returns the borrow out of the top.
bool subtract_words(c32i* T, const c32i* A, const c32i* B, std::size_t n, bool borrow = false);
bool subtract_words(c64i* T, const c64i* A, const c64i* B, std::size_t n, bool borrow = false);

/// T += x on n words. Returns the carry out of the top; with n = 0 that is whether x isn't 0.
bool add_word(c32i* T, std::size_t n, c32i x);
bool add_word(c64i* T, std::size_t n, c64i x);

/// T = A * x + carry on n words. Returns the high word.
c32i mul_word(c32i* T, const c32i* A, std::size_t n, c32i x, c32i carry);
c64i mul_word(c64i* T, const c64i* A, std::size_t n, c64i x, c64i carry);

/// T += A * x on n words. Returns the high word.
c32i mul_add_word(c32i* T, const c32i* A, std::size_t n, c32i x, c32i carry = 0);
c64i mul_add_word(c64i* T, const c64i* A, std::size_t n, c64i x, c64i carry = 0);

/// Adds c to the n words at T and ripples: c is small, usually -1, 0 or +1. Returns what leaves the top: +1, 0 or -1.
int carry_ripple(int c, c32i* T, std::size_t n);
int carry_ripple(int c, c64i* T, std::size_t n);

/// The length that the n words at T have without the top words equal to `word`.
std::size_t top_length(c32i word, const c32i* T, std::size_t n);
std::size_t top_length(c64i word, const c64i* T, std::size_t n);

} // namespace zvp
