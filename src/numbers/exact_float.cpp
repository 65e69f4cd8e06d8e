#include "numbers/exact_float.h"

#include "app/failure/exceptions.h"
#include "digits/hash/hash_field.h"
#include "multiply/tables/multiply.h"
#include "multiply/words/parallel_words.h"
#include "numbers/schoolbook.h"

#include <algorithm>
#include <bit>

namespace zvp {

template <class Word>
void ExactFloat<Word>::start(const char* function, std::size_t needed) {
    if (capacity < needed) throw BufferTooSmallException(function, capacity, needed);
    T = buffer;
}

template <class Word>
void ExactFloat<Word>::set_zero(bool zero_sign) {
    T = buffer;
    L = 0;
    exp = 0;
    sign = zero_sign;
}

template <class Word>
void ExactFloat<Word>::set_BasicInt(const ParallelContext& ctx, const BasicInt<Word>& A) {
    start("ExactFloat::set_BasicInt()", A.L);
    const auto zeros = std::find_if(A.T, A.T + A.L, [](Word x) { return x != 0; }) - A.T;
    T = buffer + zeros;
    L = A.L - static_cast<std::size_t>(zeros);
    exp = zeros;
    sign = true;
    hash = A.hash;
    bp_copy(T, A.T + zeros, L * sizeof(Word), ctx);
}

template <class Word>
void ExactFloat<Word>::set_ExactFloat(const ParallelContext& ctx, const ExactFloat& A) {
    start("ExactFloat::set_ExactFloat()", A.L);
    L = A.L;
    exp = A.exp;
    sign = A.sign;
    hash = A.hash;
    bp_copy(T, A.T, L * sizeof(Word), ctx);
}

template <class Word>
void ExactFloat<Word>::set_add(const ParallelContext& ctx, const ExactFloat& A, const ExactFloat& B) {
    const std::uint64_t sum_hash = fold_hash(A.hash + B.hash);
    if (A.L == 0 || B.L == 0) {
        set_ExactFloat(ctx, A.L == 0 ? B : A);
        hash = sum_hash;
        return;
    }
    if (A.sign != B.sign) throw InvalidParametersException("ExactFloat::set_add()", "Not implemented yet.");
    const ExactFloat& a = A.top() >= B.top() ? A : B; // the higher
    const ExactFloat& b = A.top() >= B.top() ? B : A;
    const ExactFloat& low = A.exp < B.exp ? A : B;
    const std::int64_t overlap = std::max(A.exp, B.exp); // where the higher exp begins
    const auto length = static_cast<std::size_t>(a.top() - low.exp);
    start("ExactFloat::set_add()", length + 1);
    L = length;
    exp = low.exp;
    sign = A.sign;
    hash = sum_hash;

    const std::int64_t low_end = std::min(low.top(), overlap);
    bp_copy(T, low.T, static_cast<std::size_t>(low_end - exp) * sizeof(Word), ctx);
    bp_fill(at(low_end), static_cast<std::size_t>(overlap - low_end), Word{0}, ctx);
    const std::int64_t rest = std::max(overlap, b.top());
    const bool carry =
        overlap < rest
        && bp_add(at(overlap), a.at(overlap), b.at(overlap), static_cast<std::size_t>(rest - overlap), false, ctx);
    const auto rest_length = static_cast<std::size_t>(a.top() - rest);
    bp_copy(at(rest), a.at(rest), rest_length * sizeof(Word), ctx);
    if (carry && bp_add_carry(1, at(rest), rest_length, ctx) != 0) append(1);
}

template <class Word>
void ExactFloat<Word>::set_mul(const MultiplyParameters& pars, const ExactFloat& A, const ExactFloat& B) {
    const std::size_t n = A.L + B.L;
    const bool zero = A.L == 0 || B.L == 0;
    start("ExactFloat::set_mul()", zero ? 0 : n);
    hash = mul_mod(A.hash, B.hash);
    if (zero) return set_zero(false);
    if (n < basecase_clen && !is_dry(T))
        multiply_schoolbook(T, A.T, A.L, B.T, B.L);
    else if (n >= basecase_clen)
        mul(pars, T, A.T, A.L, B.T, B.L);
    L = n - (!is_dry(T) && T[n - 1] == 0);
    exp = A.exp + B.exp;
    sign = A.sign == B.sign;
}

template <class Word>
void ExactFloat<Word>::mp2(const ParallelContext& ctx, std::int64_t e) {
    if (L == 0) {
        hash = mul_mod(hash, pow_two(e));
        return;
    }
    const std::size_t needed = static_cast<std::size_t>(T - buffer) + L + 1;
    if (capacity < needed) throw BufferTooSmallException("ExactFloat::mp2()", capacity, needed);
    const unsigned bits = static_cast<std::uint64_t>(e) % w;
    if (bits != 0)
        if (const Word high = bp_mul_word(T, T, L, Word{1} << bits, Word{0}, ctx)) append(high);
    constexpr int log2_w = std::countr_zero(w);
    exp += e >> log2_w;
    hash = mul_mod(hash, pow_two(e));
}

template <class Word>
std::uint64_t ExactFloat<Word>::residue(const ParallelContext& ctx) const {
    const std::uint64_t magnitude = bp_hash(0, T, L, ctx);
    const std::int64_t exponent = exp % std::int64_t{hash_bits} * std::int64_t{w}; // 2 has the order 61
    const std::uint64_t shifted = mul_mod(magnitude, pow_two(exponent));
    return sign ? shifted : hash_negate(shifted);
}

template <class Word>
bool ExactFloat<Word>::matches_hash(const ParallelContext& ctx) const {
    return normalize_hash(hash) == normalize_hash(residue(ctx));
}

template class ExactFloat<c32i>;
template class ExactFloat<c64i>;

} // namespace zvp
