#include "multiply/basecase/mulb.h"

namespace zvp::MULB {

namespace {

/// The words that the halves of an operand of n words take, level by level, with a cut-over at t words.
std::size_t steps(std::size_t n, std::size_t t) {
    std::size_t sum = 0;
    for (std::size_t x = n; x >= t; x /= 2) {
        x += x % 2;
        sum += x;
    }
    return sum;
}

} // namespace

std::size_t mul_scratch(std::size_t n) {
    constexpr std::size_t cut_over = 14;
    if (n < cut_over) return 4 * n + 4;
    return 4 * (n + 4 * (steps(n, cut_over) + 2 * n)) + 4;
}

} // namespace zvp::MULB
