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

// In words: what is copied to be whole limbs, and its product, take at most 4n + 4. multiply() of a >= b limbs, b <= n / 2,
// cuts into slices of b and a remainder r: the slice's product takes b + r limbs, its own slices r + r' and so on as in
// Euclid's algorithm, together less than 5b, and the halvings of the last take 2 limbs for each limb and 2 for each
// halving: 6n and a little. steps(n) >= n, so that 13n are there; below the cut-over nothing needs scratch.
std::size_t mul_scratch(std::size_t n) {
    constexpr std::size_t cut_over = 14;
    if (n < cut_over) return 4 * n + 4;
    return 4 * (n + 4 * (steps(n, cut_over) + 2 * n)) + 4;
}

} // namespace zvp::MULB
