#include "app/failure/exceptions.h"
#include "digits/hash/hash_field.h"
#include "multiply/words/parallel_words.h"
#include "numbers/big_float.h"

#include <algorithm>

namespace zvp {
namespace {

/// The positions that a sum or difference keeps.
struct KeptWords {
    std::int64_t low;
    std::int64_t top;

    std::size_t length() const { return static_cast<std::size_t>(top - low); }
};

/// A zero has no place among the positions, so that the other operand alone decides them.
KeptWords kept_words(std::size_t p, const BigFloat& A, const BigFloat& B) {
    const BigFloat& a = A.L > 0 ? A : B;
    const BigFloat& b = B.L > 0 ? B : A;
    const std::int64_t top = std::max(a.top(), b.top());
    const std::int64_t low = std::max(top - static_cast<std::int64_t>(p + 1), std::min(a.exp, b.exp));
    return {low, top};
}

/// What an operand brings into a sum whose words begin at `low`, above whose top it doesn't reach.
std::uint64_t hash_from(const BigFloat& A, std::int64_t low, const ParallelContext& ctx) {
    if (A.L == 0 || A.top() <= low) return 0;
    const std::int64_t begin = std::max(A.exp, low);
    return shift_words(A.hash_of_top(static_cast<std::size_t>(A.top() - begin), ctx), begin - low);
}

/// A zero brings nothing, watched or not.
bool are_watched(const BigFloat& A, const BigFloat& B) { return (A.watched || A.L == 0) && (B.watched || B.L == 0); }

} // namespace

void BigFloat::set_uadd(std::size_t p, const ParallelContext& ctx, const BigFloat& A, const BigFloat& B) {
    const KeptWords kept = kept_words(p, A, B);
    start("BigFloat::set_uadd()", kept.length() + 1);
    L = kept.length();
    exp = kept.low;
    sign = true;
    if (bp_uadd_window(T, ctx, false, A.window(), B.window(), kept.low, kept.top)) append(1);
    set_hash(are_watched(A, B), [&] { return add_mod(hash_from(A, exp, ctx), hash_from(B, exp, ctx)); });
}

void BigFloat::set_usub(std::size_t p, const ParallelContext& ctx, const BigFloat& A, const BigFloat& B) {
    const KeptWords kept = kept_words(p, A, B);
    start("BigFloat::set_usub()", kept.length());
    L = kept.length();
    exp = kept.low;
    sign = true;
    if (bp_usub_window(T, ctx, false, A.window(), B.window(), kept.low, kept.top))
        throw UnsupportedNegativeException("BigFloat::set_usub()", "A negative value was encountered.");
    set_hash(are_watched(A, B), [&] { return subtract_mod(hash_from(A, exp, ctx), hash_from(B, exp, ctx)); });
    drop_top_zeros(ctx);
}

void BigFloat::set_rsub(std::size_t p, const ParallelContext& ctx, const BigFloat& A, const BigFloat& B,
                        std::int64_t top, bool result_sign) {
    start("BigFloat::set_rsub()", p + 1);
    L = p + 1;
    exp = top - static_cast<std::int64_t>(L);
    sign = result_sign;
    bp_usub_window(T, ctx, false, A.window(), B.window(), exp, top);
    drop_top_zeros(ctx);
}

/// A + B, or A - B: `flip` reads B's sign the other way round.
void BigFloat::set_signed_sum(std::size_t p, const ParallelContext& ctx, const BigFloat& A, const BigFloat& B,
                              bool flip) {
    const bool B_sign = B.sign != flip;
    if (A.L == 0) {
        set_BigFloat(p, ctx, B);
        sign = sign != flip;
    } else if (B.L == 0) {
        set_BigFloat(p, ctx, A);
    } else if (A.sign == B_sign) {
        set_uadd(p, ctx, A, B);
        sign = A.sign;
    } else if (const int order = ucmp(A, B); order == 0) {
        set_zero(false);
    } else if (order > 0) {
        set_usub(p, ctx, A, B);
        sign = A.sign;
    } else {
        set_usub(p, ctx, B, A);
        sign = B_sign;
    }
}

void BigFloat::set_add(std::size_t p, const ParallelContext& ctx, const BigFloat& A, const BigFloat& B) {
    set_signed_sum(p, ctx, A, B, false);
}

void BigFloat::set_sub(std::size_t p, const ParallelContext& ctx, const BigFloat& A, const BigFloat& B) {
    set_signed_sum(p, ctx, A, B, true);
}

} // namespace zvp
