#pragma once
// Which words of the operands a range of a product needs.
//
// Low words are dropped when their products lie below the range but for a carry into it. With W the word's base, the
// dropped part of a product, low(A) * B + high(A) * low(B), and of a square, low(A) * (2 high(A) + low(A)), are each
// below 2 W^s. So the words s .. e - 1 of the exact product, read as one number modulo W^(e - s), are what the trimmed
// operands give plus 0, 1 or 2; plus 0 or 1 where words of one operand only were dropped. High words are dropped when
// their products lie above the range: that is exact.

#include <algorithm>
#include <cstddef>
#include <utility>

namespace zvp {

/// The words s .. e - 1 of A * B. s <= e, s < AL + BL or both lengths 0.
template <class Word>
struct ProductRange {
    std::size_t s;
    std::size_t e;
    const Word* A;
    std::size_t AL;
    const Word* B;
    std::size_t BL;
};

/// The range of shorter operands, AL >= BL. Trimming twice changes nothing.
template <class Word>
ProductRange<Word> trim_range(ProductRange<Word> range) {
    auto& [s, e, A, AL, B, BL] = range;
    if (AL < BL) {
        std::swap(A, B);
        std::swap(AL, BL);
    }
    if (s > BL) {
        const std::size_t cutA = s - BL;
        const std::size_t cutB = s > AL ? s - AL : 0;
        A += cutA;
        AL -= cutA;
        B += cutB;
        BL -= cutB;
        s -= cutA + cutB;
        e -= cutA + cutB;
    }
    AL = std::min(AL, e);
    BL = std::min(BL, e);
    return range;
}

/// The words s .. e - 1 of A^2. s <= e, s < 2 AL or AL = 0.
template <class Word>
struct SquareRange {
    std::size_t s;
    std::size_t e;
    const Word* A;
    std::size_t AL;
};

template <class Word>
SquareRange<Word> trim_range(SquareRange<Word> range) {
    auto& [s, e, A, AL] = range;
    if (s > AL) {
        const std::size_t cut = s - AL;
        A += cut;
        AL -= cut;
        s -= 2 * cut;
        e -= 2 * cut;
    }
    AL = std::min(AL, e);
    return range;
}

} // namespace zvp
