#pragma once
// Words of a product by Karatsuba: the whole product, from which the range is copied.

#include "multiply/basecase/mulb.h"

#include <algorithm>

namespace zvp {

/// T = the words s .. e - 1 of the number of `length` words that write(target, scratch) makes; zeros above it. A range
/// that is the whole number is made in place, another one at M, with the scratch behind it.
template <class Word, class Write>
void write_range(std::byte* M, Word* T, std::size_t s, std::size_t e, std::size_t length, Write&& write) {
    if (s == 0 && e == length) return write(T, M);
    Word* const whole = reinterpret_cast<Word*>(M);
    write(whole, M + (length * sizeof(Word) + 7) / 8 * 8);
    const std::size_t end = std::clamp(length, s, e);
    std::copy(whole + std::min(s, length), whole + std::min(end, length), T);
    std::fill(T + (end - s), T + (e - s), Word{0});
}

/// T = the words s .. e - 1 of A^2, exact; zeros for an empty A. M has BKTTransform::work_bytes() for AL.
template <class Word>
void bkt_sqr(std::byte* M, Word* T, std::size_t s, std::size_t e, const Word* A, std::size_t AL) {
    AL = std::min(AL, e);
    if (AL == 0) return void(std::fill(T, T + (e - s), Word{0}));
    write_range(M, T, s, e, 2 * AL, [&](Word* target, void* scratch) { MULB::sqr(A, AL, target, scratch); });
}

/// T = the words s .. e - 1 of A * B, exact; zeros if one is empty. M has BKTTransform::work_bytes() for half of AL + BL.
template <class Word>
void bkt_mul(std::byte* M, Word* T, std::size_t s, std::size_t e, const Word* A, std::size_t AL, const Word* B,
             std::size_t BL) {
    AL = std::min(AL, e);
    BL = std::min(BL, e);
    if (AL == 0 || BL == 0) return void(std::fill(T, T + (e - s), Word{0}));
    write_range(M, T, s, e, AL + BL, [&](Word* target, void* scratch) { MULB::mul(A, AL, B, BL, target, scratch); });
}

} // namespace zvp
