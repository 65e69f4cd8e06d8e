#include "numbers/big_float.h"

#include "app/console/console.h"
#include "app/failure/exceptions.h"
#include "digits/hash/hash_field.h"
#include "multiply/words/parallel_words.h"
#include "multiply/words/word_loops.h"

#include <algorithm>
#include <cstring>

namespace zvp {
namespace {

[[gnu::cold, noreturn]] void throw_too_small(const char* function, std::size_t capacity, std::size_t needed) {
    throw BufferTooSmallException(function, capacity, needed);
}

} // namespace

void BigFloat::check_room(const char* function, std::size_t needed) const {
    if (capacity < needed) throw_too_small(function, capacity, needed);
}

void BigFloat::start(const char* function, std::size_t needed) {
    check_room(function, needed);
    T = buffer;
    watched = false;
}

void BigFloat::set_zero(bool zero_sign) {
    T = buffer;
    L = 0;
    exp = 0;
    sign = zero_sign;
    watched = false;
}

void BigFloat::drop_top_zeros(const ParallelContext& ctx) {
    L = bp_scan_top(Word{0}, T, L, ctx);
    if (L > 0) return;
    exp = 0;
    sign = true;
}

/// The top min(n, L) words.
WordWindow BigFloat::top_words(std::size_t n) const {
    const std::size_t cut = L > n ? L - n : 0;
    return {T + cut, L - cut, exp + static_cast<std::int64_t>(cut)};
}

void BigFloat::set_BigFloat(std::size_t p, const ParallelContext& ctx, const BigFloat& A) {
    if (A.L == 0) return set_zero(false);
    const WordWindow a = A.top_words(p + extra_precision);
    start("BigFloat::set_BigFloat()", a.L);
    bp_copy(T, a.T, a.L * sizeof(Word), ctx);
    set_hash(A.watched, [&] { return A.hash_of_top(a.L, ctx); });
    L = a.L;
    exp = a.exp;
    sign = A.sign;
}

void BigFloat::watch(const ParallelContext& ctx) {
    hash = bp_hash(0, T, L, ctx);
    watched = true;
}

bool BigFloat::matches_hash(const ParallelContext& ctx) const {
    return watched && normalize_hash(hash) == bp_hash(0, T, L, ctx);
}

void BigFloat::check_hash(const char* function, const ParallelContext& ctx) const {
    if (watched && !is_dry(T) && !matches_hash(ctx)) throw AlgorithmFailedException(function, "Number Hash Mismatch");
}

std::uint64_t BigFloat::hash_of_top(std::size_t n, const ParallelContext& ctx) const {
    if (n >= L) return hash;
    const std::size_t cut = L - n;
    return shift_words(subtract_mod(hash, bp_hash(0, T, cut, ctx)), -static_cast<std::int64_t>(cut));
}

BigFloat::Word BigFloat::get_word(std::int64_t pos) const {
    return pos < exp || pos >= top() || is_dry(T) ? 0 : T[pos - exp];
}

void BigFloat::check_normalization() const {
    if (L > 0 && !is_dry(T) && T[L - 1] == 0) fatal_stop("BigFloat::check_normalization(): Top word is zero.");
}

namespace {

/// Compares n words from the top down.
int compare_words(const wtype* A, const wtype* B, std::size_t n) {
    constexpr std::size_t block = 64; // words at a time, as long as they are equal
    while (n >= block && std::memcmp(A + n - block, B + n - block, block * sizeof(wtype)) == 0) n -= block;
    while (n > 0 && A[n - 1] == B[n - 1]) --n;
    if (n == 0) return 0;
    return A[n - 1] < B[n - 1] ? -1 : 1;
}

} // namespace

int ucmp(const BigFloat& A, const BigFloat& B) {
    if (A.L == 0 || B.L == 0) return (A.L != 0) - (B.L != 0);
    if (A.top() != B.top()) return A.top() < B.top() ? -1 : 1;
    if (is_dry(A.T) || is_dry(B.T)) return 1;
    const std::size_t common = std::min(A.L, B.L);
    if (const int order = compare_words(A.T + A.L - common, B.T + B.L - common, common)) return order;
    if (top_length(wtype{0}, A.T, A.L - common) > 0) return 1;
    return top_length(wtype{0}, B.T, B.L - common) > 0 ? -1 : 0;
}

} // namespace zvp
