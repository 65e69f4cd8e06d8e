#include "multiply/basecase/mulb.h"
#include "multiply/tables/multiply.h"
#include "numbers/big_float.h"

#include <algorithm>
#include <cstring>

namespace zvp {
namespace {

/// Whole products with an operand below this many words skip the tables.
constexpr std::size_t schoolbook_words = 10;

/// So does every product of at most this many words: finding its algorithm and, where it is cut, copying it from the
/// scratch costs more than Karatsuba saves (16 of 36 ns for 20 words, big_float_bench on Zen 5).
constexpr std::size_t direct_words = 64;

constexpr std::size_t limb_words = 64 / BigFloat::w;

std::uint64_t limb(const WordWindow& A) {
    std::uint64_t x = A.T[0];
    if (A.L == limb_words) std::memcpy(&x, A.T, sizeof x);
    return x;
}

/// T = the words of A * B from the word s on, for operands of at most a limb: one widening multiply.
void multiply_limbs(wtype* T, std::size_t s, const WordWindow& A, const WordWindow& B) {
    if (is_dry(T)) return;
    const unsigned __int128 product = static_cast<unsigned __int128>(limb(A)) * limb(B) >> s * BigFloat::w;
    const std::uint64_t limbs[2] = {static_cast<std::uint64_t>(product), static_cast<std::uint64_t>(product >> 64)};
    const std::size_t n = A.L + B.L - s;
    std::memcpy(T, limbs, sizeof limbs[0]);
    if (n > limb_words) T[limb_words] = static_cast<wtype>(limbs[1]);
    if (n > limb_words + 1) T[n - 1] = static_cast<wtype>(limbs[1] >> (64 - BigFloat::w));
}

/// T = the words from s on of the n words that write(target) makes; by way of the stack if any are cut.
template <class Write>
void write_from(wtype* T, std::size_t s, std::size_t n, Write&& write) {
    if (is_dry(T)) return;
    if (s == 0) return write(T);
    wtype whole[direct_words];
    write(whole);
    std::copy(whole + s, whole + n, T);
}

// The long routes, kept out of the line of the short one, with their operands in registers.

[[gnu::noinline]] void multiply(const MultiplyParameters& pars, wtype* T, std::size_t s, const wtype* A, std::size_t AL,
                                const wtype* B, std::size_t BL) {
    const std::size_t n = AL + BL;
    if (n <= direct_words || (s == 0 && std::min(AL, BL) < schoolbook_words))
        write_from(T, s, n, [&](wtype* target) { MULB::mulB(A, AL, B, BL, target); });
    else if (s == 0)
        mul(pars, T, A, AL, B, BL);
    else
        mul(pars, T, s, n, A, AL, B, BL);
}

[[gnu::noinline]] void square(const MultiplyParameters& pars, wtype* T, std::size_t s, const wtype* A, std::size_t AL) {
    const std::size_t n = 2 * AL;
    if (n <= direct_words)
        write_from(T, s, n, [&](wtype* target) { MULB::sqrB(A, AL, target); });
    else
        sqr(pars, T, s, n, A, AL);
}

} // namespace

/// T has the top `kept` words of A * B.
void BigFloat::finish_product(const WordWindow& A, const WordWindow& B, std::size_t kept, bool product_sign) {
    L = kept - (!is_dry(T) && T[kept - 1] == 0);
    exp = A.exp + B.exp + static_cast<std::int64_t>(A.L + B.L - kept);
    sign = product_sign;
}

void BigFloat::set_mul(std::size_t p, const MultiplyParameters& pars, const BigFloat& A, const BigFloat& B) {
    if (A.L == 0 || B.L == 0) return set_zero(false);
    const WordWindow a = A.top_words(p + extra_precision);
    const WordWindow b = B.top_words(p + extra_precision);
    const std::size_t n = a.L + b.L;
    const std::size_t kept = std::min(n, p + extra_precision);
    start("BigFloat::set_mul()", kept);

    if (a.L <= limb_words && b.L <= limb_words)
        multiply_limbs(T, n - kept, a, b);
    else
        multiply(pars, T, n - kept, a.T, a.L, b.T, b.L);
    finish_product(a, b, kept, A.sign == B.sign);
}

void BigFloat::set_mul_small(std::size_t p, const MultiplyParameters& pars, const BigFloat& A, const BigFloat& B) {
    if (A.L == 0 || B.L == 0) return set_zero(false);
    const WordWindow a = A.top_words(p + extra_precision);
    const WordWindow b = B.top_words(p + extra_precision);
    const std::size_t n = a.L + b.L;
    const std::size_t kept = std::min(n, p + extra_precision);
    start("BigFloat::set_mul_small()", kept);
    mul_unchecked(pars, T, n - kept, n, a.T, a.L, b.T, b.L);
    finish_product(a, b, kept, A.sign == B.sign);
}

void BigFloat::set_sqr(std::size_t p, const MultiplyParameters& pars, const BigFloat& A) {
    if (A.L == 0) return set_zero(true);
    const WordWindow a = A.top_words(p + extra_precision);
    const std::size_t n = 2 * a.L;
    const std::size_t kept = std::min(n, p + extra_precision);
    start("BigFloat::set_sqr()", kept);

    if (a.L <= limb_words)
        multiply_limbs(T, n - kept, a, a);
    else
        square(pars, T, n - kept, a.T, a.L);
    finish_product(a, a, kept, true);
}

} // namespace zvp
