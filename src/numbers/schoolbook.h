#pragma once
// The products that exact numbers do themselves.

#include "multiply/basecase/mulb.h"
#include "multiply/words/word_types.h"

#include <cstddef>

namespace zvp {

/// T[0, 2) = a * b.
inline void multiply_words(c32i* T, c32i a, c32i b) {
    const c64i product = c64i{a} * b;
    T[0] = static_cast<c32i>(product);
    T[1] = static_cast<c32i>(product >> 32);
}
inline void multiply_words(c64i* T, c64i a, c64i b) {
    __extension__ using Product = unsigned __int128;
    const Product product = Product{a} * b;
    T[0] = static_cast<c64i>(product);
    T[1] = static_cast<c64i>(product >> 64);
}

/// T[0, a + b) = A * B for operands of one word or more, which T doesn't overlap.
template <class Word>
void multiply_schoolbook(Word* T, const Word* A, std::size_t a, const Word* B, std::size_t b) {
    if (a == 1 && b == 1) return multiply_words(T, *A, *B);
    MULB::mulB(A, a, B, b, T);
}

/// T[0, 2n) = A^2 for an operand of one word or more, which T doesn't overlap.
template <class Word>
void square_schoolbook(Word* T, const Word* A, std::size_t n) {
    if (n == 1) return multiply_words(T, *A, *A);
    MULB::sqrB(A, n, T);
}

} // namespace zvp
