#include "app/console/console.h"
#include "app/failure/assertion.h"
#include "app/failure/exceptions.h"
#include "digits/hash/hash_field.h"
#include "multiply/basecase/mulb.h"
#include "multiply/words/parallel_words.h"
#include "multiply/words/shoup_divider.h"
#include "multiply/words/word_loops.h"
#include "numbers/big_float.h"

#include <algorithm>

namespace zvp {

/// A * x with A cut to n words.
void BigFloat::multiply_word(std::size_t n, const ParallelContext& ctx, const BigFloat& A, Word x) {
    if (A.L == 0 || x == 0) return set_zero(false);
    const WordWindow a = A.top_words(n);
    start("BigFloat::set_mul_uW()", n + 1);
    L = a.L;
    exp = a.exp;
    sign = A.sign;
    if (const Word high = bp_mul_word(T, a.T, a.L, x, Word{0}, ctx)) append(high);
    set_hash(A.watched, [&] { return mul_mod(A.hash_of_top(a.L, ctx), x); });
}

void BigFloat::set_mul_uW(std::size_t p, const ParallelContext& ctx, const BigFloat& A, Word x) {
    multiply_word(p + 1, ctx, A, x);
}

void BigFloat::set_mul_uW(std::size_t p, const ParallelContext& ctx, const BigFloat& A, SDWord x) {
    const DWord m = x < 0 ? DWord{0} - static_cast<DWord>(x) : static_cast<DWord>(x);
    const Word words[2] = {static_cast<Word>(m), static_cast<Word>(m >> w)};
    if (words[1] == 0) {
        multiply_word(std::max<std::size_t>(p, 1), ctx, A, words[0]);
        sign = sign != (x < 0);
        return;
    }
    if (A.L == 0) return set_zero(false);
    const WordWindow a = A.top_words(p + 1);
    start("BigFloat::set_mul_uW()", a.L + 2);
    if (!is_dry(T)) MULB::mulB(a.T, a.L, words, 2, T);
    L = a.L + 2 - (!is_dry(T) && T[a.L + 1] == 0);
    exp = a.exp;
    sign = A.sign != (x < 0);
}

void BigFloat::set_div_sW(std::size_t p, const ParallelContext& ctx, const BigFloat& A, SWord x) {
    if (x == 0) throw ArithmeticException("BigFloat::set_div_sW()", "Divide by zero.");
    if (x == 1) return set_BigFloat(p, ctx, A);
    if (A.L == 0) return set_zero(false);
    const std::size_t length = p + extra_precision;
    const WordWindow a = A.top_words(length);
    const std::size_t below = length - a.L;
    start("BigFloat::set_div_sW()", length);
    L = length;
    exp = a.exp - static_cast<std::int64_t>(below);
    sign = A.sign != (x < 0);

    if (is_dry(T)) return;
    if (x == -1) { // the divider takes no 1
        bp_copy(T + below, a.T, a.L * sizeof(Word), ctx);
        bp_fill(T, below, Word{0}, ctx);
        return;
    }
    const ShoupDivider<Word> divider(x < 0 ? Word{0} - static_cast<Word>(x) : static_cast<Word>(x));
    const Word remainder = bp_div_np(divider, T + below, a.T, a.L, Word{0}, ctx);
    bp_div_ex(divider, T, below, remainder, ctx);
    L -= T[L - 1] == 0;
}

void BigFloat::mul_uW(const ParallelContext& ctx, Word x) {
    if (x == 1 || L == 0) return;
    if (x == 0) return set_zero(false);
    check_room("BigFloat::mul_uW()", static_cast<std::size_t>(T - buffer) + L + 1);
    if (const Word high = bp_mul_word(T, T, L, x, Word{0}, ctx)) append(high);
    if (watched) hash = mul_mod(hash, x);
}

void BigFloat::add_ip(Word word, std::int64_t pos) {
    if (L == 0 || pos < exp || pos > top()) fatal_stop("BigFloat::add_ip(): Magnitude is out of range.");
    check_room("BigFloat::add_ip()", static_cast<std::size_t>(T - buffer) + L + 1);
    const auto index = static_cast<std::size_t>(pos - exp);
    if (watched) hash = add_mod(hash, shift_words(word, pos - exp));
    if (index == L && word != 0)
        append(word);
    else if (!is_dry(T) && add_word(T + index, L - index, word))
        append(1);
}

void BigFloat::purturb_up(std::size_t k) {
    if (L == 0 || is_dry(T)) return;
    ZVP_ASSERT(k < L);
    if (watched) hash = add_mod(hash, pow_word(static_cast<std::int64_t>(k)));
    if (!add_word(T + k, L - k, Word{1})) return;
    check_room("BigFloat::purturb_up()", static_cast<std::size_t>(T - buffer) + L + 1);
    append(1);
}

} // namespace zvp
