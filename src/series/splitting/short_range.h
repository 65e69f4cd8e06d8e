#pragma once
// The bottom of a leaf: ranges of up to four terms, in fixed numbers of limbs.
//
// The products of a few limbs cost less than the calls, lengths and branches around them: kept in the general recursion,
// the lowest two levels took nearly half of a leaf's time.

#include "multiply/basecase/fixed_product.h"

#include <cstddef>
#include <cstdint>

namespace zvp::BinarySplitting::CommonP2B3 {

/// The magnitudes of the numbers of up to n terms, low limb first, zeros above.
template <std::size_t n>
struct ShortRange {
    std::uint64_t P[2 * n];
    std::uint64_t Q[2 * n];
    std::uint64_t R[n];
};

/// A term whose numbers are no longer than this; P is below 2^127, which leaves room for the carries of sums.
using ShortTerm = ShortRange<1>;

inline constexpr ShortTerm no_terms{{0, 0}, {1, 0}, {1}};

/// T[0, n) = A[0, n) +- B[0, m); nothing leaves the top.
template <std::size_t n, std::size_t m>
inline void add_fixed(std::uint64_t* T, const std::uint64_t* A, const std::uint64_t* B, bool subtract) {
    // A - B = not (not A + B)
    const std::uint64_t mask = -std::uint64_t{subtract};
    std::uint64_t carry = 0;
    MULB::unrolled<n>([&](auto i) __attribute__((always_inline)) {
        unsigned __int128 sum = static_cast<unsigned __int128>(A[i] ^ mask) + carry;
        if constexpr (i < m) sum += B[i];
        T[i] = static_cast<std::uint64_t>(sum) ^ mask;
        carry = static_cast<std::uint64_t>(sum >> 64);
    });
}

/// The numbers of two neighbouring ranges: P = P_a Q_b +- R_a P_b.
template <std::size_t n>
inline ShortRange<2 * n> merge_short(const ShortRange<n>& a, const ShortRange<n>& b, bool same_sign) {
    ShortRange<2 * n> out;
    std::uint64_t earlier[4 * n], later[3 * n];
    earlier[4 * n - 1] = MULB::fixed_product<2 * n, 2 * n>(earlier, a.P, b.Q);
    later[3 * n - 1] = MULB::fixed_product<2 * n, n>(later, b.P, a.R);
    add_fixed<4 * n, 3 * n>(out.P, earlier, later, !same_sign);
    out.Q[4 * n - 1] = MULB::fixed_product<2 * n, 2 * n>(out.Q, a.Q, b.Q);
    out.R[2 * n - 1] = MULB::fixed_product<n, n>(out.R, a.R, b.R);
    return out;
}

} // namespace zvp::BinarySplitting::CommonP2B3
