// Sums in the storage of one operand. Positions are absolute; at(position) is the word that has it.

#include "app/failure/assertion.h"
#include "app/failure/exceptions.h"
#include "digits/hash/hash_field.h"
#include "multiply/words/parallel_words.h"
#include "numbers/exact_float.h"

#include <algorithm>

namespace zvp {
namespace {

std::size_t distance(std::int64_t from, std::int64_t to) { return static_cast<std::size_t>(to - from); }

template <class Word>
void copy_words(Word* T, const Word* A, std::size_t n, const ParallelContext& ctx) {
    bp_copy(T, A, n * sizeof(Word), ctx);
}

/// T = -A modulo W^n; T may be A. Returns the borrow, which is there unless A is zero.
template <class Word>
bool negate_words(Word* T, const Word* A, std::size_t n, const ParallelContext& ctx) {
    bp_not(T, A, n, ctx);
    return bp_add_carry(1, T, n, ctx) == 0;
}

template <class Word>
constexpr Word ones = static_cast<Word>(~Word{0});

} // namespace

template <class Word>
void ExactFloat<Word>::add_ip(const ParallelContext& ctx, const ExactFloat& B) {
    const std::uint64_t sum_hash = fold_hash(hash + B.hash);
    if (L == 0)
        set_ExactFloat(ctx, B);
    else if (B.L != 0 && top() >= B.top())
        sign == B.sign ? uaddAB_ip(ctx, B) : usubAB_ip(ctx, B);
    else if (B.L != 0)
        sign == B.sign ? uaddBA_ip(ctx, B) : usubBA_ip(ctx, B);
    hash = sum_hash;
}

template <class Word>
void ExactFloat<Word>::check_reach(const char* function, bool top_is_outside, const char* text,
                                   const ExactFloat& B) const {
    if (top_is_outside) throw InvalidParametersException(function, text);
    if (B.exp < Tmin()) throw InvalidParametersException(function, "Bexp < Tmin");
}

/// Takes the words down to `position` into the number; the caller is to write them.
template <class Word>
void ExactFloat<Word>::reach_down(std::int64_t position) {
    const std::size_t words = distance(position, exp);
    T -= words;
    L += words;
    exp = position;
}

/// |this| + |B|, whichever has the higher top.
template <class Word>
void ExactFloat<Word>::add_magnitude(const char* function, const ParallelContext& ctx, const ExactFloat& B) {
    ZVP_ASSERT(L > 0 && B.L > 0);
    const std::int64_t own_low = exp, own_top = top(), sum_top = std::max(own_top, B.top());
    check_reach(function, sum_top >= Tmax(), "Amag >= Tmax", B);
    if (B.exp < own_low) {
        reach_down(B.exp);
        const std::int64_t end = std::min(B.top(), own_low);
        copy_words(T, B.T, distance(exp, end), ctx);
        bp_fill(at(end), distance(end, own_low), Word{0}, ctx);
    }
    L = distance(exp, sum_top);
    const std::int64_t begin = std::max(own_low, B.exp), end = std::min(own_top, B.top());
    const bool carry = begin < end && bp_add(at(begin), at(begin), B.at(begin), distance(begin, end), false, ctx);
    if (own_top < B.top()) {
        const std::int64_t above = std::max(own_top, B.exp);
        bp_fill(at(own_top), distance(own_top, above), Word{0}, ctx);
        copy_words(at(above), B.at(above), distance(above, B.top()), ctx);
    }
    if (carry && bp_add_carry(1, at(end), distance(end, sum_top), ctx) != 0) append(1);
}

template <class Word>
void ExactFloat<Word>::uaddAB_ip(const ParallelContext& ctx, const ExactFloat& B) {
    ZVP_ASSERT(top() >= B.top());
    add_magnitude("ExactFloat::uaddAB_ip()", ctx, B);
}

template <class Word>
void ExactFloat<Word>::uaddBA_ip(const ParallelContext& ctx, const ExactFloat& B) {
    ZVP_ASSERT(top() < B.top());
    add_magnitude("ExactFloat::uaddBA_ip()", ctx, B);
}

/// A borrow out of the top leaves W^L less the magnitude, of the other sign.
template <class Word>
void ExactFloat<Word>::finish_difference(bool borrow, const ParallelContext& ctx) {
    if (borrow) {
        negate_words(T, T, L, ctx);
        sign = !sign;
    }
    L = bp_scan_top(Word{0}, T, L, ctx);
    if (L > 0) return;
    exp = 0;
    sign = true;
}

template <class Word>
void ExactFloat<Word>::usubAB_ip(const ParallelContext& ctx, const ExactFloat& B) {
    ZVP_ASSERT(L > 0 && B.L > 0 && top() >= B.top());
    check_reach("ExactFloat::usubAB_ip()", top() > Tmax(), "Amag > Tmax", B);
    const std::int64_t own_low = exp;
    bool borrow = false;
    if (B.exp < own_low) {
        reach_down(B.exp);
        const std::int64_t end = std::min(B.top(), own_low);
        borrow = negate_words(T, B.T, distance(exp, end), ctx);
        bp_fill(at(end), distance(end, own_low), ones<Word>, ctx); // 0 - borrow: all of B is below, and isn't zero
    }
    const std::int64_t begin = std::max(own_low, B.exp), end = std::max(begin, B.top());
    if (begin < end) borrow = bp_sub(at(begin), at(begin), B.at(begin), distance(begin, end), borrow, ctx);
    finish_difference(borrow && bp_add_carry(-1, at(end), distance(end, top()), ctx) != 0, ctx);
}

template <class Word>
void ExactFloat<Word>::usubBA_ip(const ParallelContext& ctx, const ExactFloat& B) {
    ZVP_ASSERT(L > 0 && B.L > 0 && top() < B.top());
    check_reach("ExactFloat::usubBA_ip()", B.top() > Tmax(), "Amag > Tmax", B);
    const std::int64_t own_low = exp, own_top = top();
    bool borrow = false;
    if (B.exp < own_low) {
        reach_down(B.exp);
        copy_words(T, B.T, distance(exp, own_low), ctx);
    } else if (own_low < B.exp) {
        const std::int64_t end = std::min(own_top, B.exp);
        borrow = negate_words(T, T, distance(own_low, end), ctx);
        bp_fill(at(end), distance(end, B.exp), ones<Word>, ctx); // 0 - borrow: all of this is below, and isn't zero
    }
    L = distance(exp, B.top());
    const std::int64_t begin = std::max(own_low, B.exp), end = std::max(begin, own_top);
    if (begin < end) borrow = bp_sub(at(begin), B.at(begin), at(begin), distance(begin, end), borrow, ctx);
    copy_words(at(end), B.at(end), distance(end, B.top()), ctx);
    sign = B.sign;
    finish_difference(borrow && bp_add_carry(-1, at(end), distance(end, B.top()), ctx) != 0, ctx);
}

template void ExactFloat<c32i>::add_ip(const ParallelContext&, const ExactFloat&);
template void ExactFloat<c32i>::uaddAB_ip(const ParallelContext&, const ExactFloat&);
template void ExactFloat<c32i>::uaddBA_ip(const ParallelContext&, const ExactFloat&);
template void ExactFloat<c32i>::usubAB_ip(const ParallelContext&, const ExactFloat&);
template void ExactFloat<c32i>::usubBA_ip(const ParallelContext&, const ExactFloat&);
template void ExactFloat<c64i>::add_ip(const ParallelContext&, const ExactFloat&);
template void ExactFloat<c64i>::uaddAB_ip(const ParallelContext&, const ExactFloat&);
template void ExactFloat<c64i>::uaddBA_ip(const ParallelContext&, const ExactFloat&);
template void ExactFloat<c64i>::usubAB_ip(const ParallelContext&, const ExactFloat&);
template void ExactFloat<c64i>::usubBA_ip(const ParallelContext&, const ExactFloat&);

} // namespace zvp
