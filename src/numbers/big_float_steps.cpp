#include "multiply/words/parallel_words.h"
#include "numbers/big_float.h"

#include <algorithm>

namespace zvp {

/// Removes low zero words and top words of all ones; returns whether there were such top words.
bool BigFloat::strip_ones(const ParallelContext& ctx) {
    watched = false;
    if (is_dry(T)) return true;
    const auto low = static_cast<std::size_t>(std::find_if(T, T + L, [](Word x) { return x != 0; }) - T);
    T += low;
    L -= low;
    exp += static_cast<std::int64_t>(low);
    const std::size_t rest = bp_scan_top(~Word{0}, T, L, ctx);
    const bool removed = rest < L;
    L = removed ? std::max<std::size_t>(rest, 1) : rest;
    return removed;
}

void BigFloat::strip_ip(const ParallelContext& ctx) {
    if (L > 0 && !strip_ones(ctx)) drop_top_zeros(ctx);
}

void BigFloat::complement_ip(const ParallelContext& ctx) {
    if (L == 0) return;
    strip_ones(ctx);
    // T[0] isn't zero, so that its complement takes the 1; nor is the top word all ones, unless it is the only one.
    bp_not(T, T, L, ctx);
    bp_add_carry(1, T, L, ctx);
}

void BigFloat::truncate_at(std::int64_t pos, const ParallelContext& ctx) {
    if (L == 0 || pos >= top()) return;
    watched = false;
    L = pos <= exp ? 0 : static_cast<std::size_t>(pos - exp);
    drop_top_zeros(ctx);
}

} // namespace zvp
