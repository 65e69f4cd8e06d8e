#pragma once
// The numbers that a sum carries from its last block to its first, and how a block is folded into them.

#include "series/splitting/binary_bbp.h"
#include "series/splitting/brent_mcmillan_ab.h"
#include "series/splitting/common_p2b3.h"

#include <array>
#include <cstddef>

namespace zvp::BinarySplitting {

/// The words that a fold of a block (a, b] reckons with.
struct BlockPrecision {
    std::size_t at_a;    // the precision at a
    std::size_t at_b;    // that at b, of everything behind the block
    std::size_t longest; // no number of the block has more words, once it is cut to the precision at a
};

/// How the blocks of a family follow each other. For each:
///
///   Running     the carried numbers. Each has room for running_words(the plan's precision)
///   heading     the head of the sum's line
///   take()      running = what the last block's numbers carry, cut to precision
///   fold()      running = the numbers of the block with what stands behind it. The block's numbers are lost; each has
///               room for number_words() beyond what the block itself needs. pars.M is for products of longest_product()
///   kept        the numbers of the block that fold() uses: those from the first on
template <class Family>
struct Folding;

/// Words of a number that products and sums at precision p are made in.
constexpr std::size_t folded_words(std::size_t p) { return p + 4; }

/// What the choice of a product's transform counts beyond the words of its operands.
inline constexpr std::size_t product_margin = 6;

/// P_run/Q_run is the sum behind the block, as the block sees it: P' = P Q_run + R P_run, Q' = Q Q_run. R P_run is asked
/// for at the precision behind the block only, for all of it has its weight there. What is carried has been cut to that
/// precision, too.
template <>
struct Folding<CommonP2B3::Family> {
    using Numbers = CommonP2B3::Family::Numbers<BigFloat>;
    using Running = std::array<BigFloat, 2>; // P, Q
    static constexpr std::size_t kept = 3;
    static constexpr const char* heading = "Series CommonP2B3...  ";
    static constexpr std::size_t first_checked = CommonP2B3::P, last_checked_end = CommonP2B3::Q + 1;

    static std::size_t number_words(std::size_t index, const BlockPrecision& p) {
        return index == CommonP2B3::P ? folded_words(p.at_a) : index == CommonP2B3::R ? folded_words(p.at_b) : 0;
    }
    static constexpr std::size_t longest_product(const BlockPrecision& p) {
        return p.longest + folded_words(p.at_b) + product_margin; // all are of a block's number and a carried one
    }
    static void take(const MultiplyParameters& pars, const BlockPrecision& p, const Numbers& block, Running& running);
    static void fold(const MultiplyParameters& pars, const BlockPrecision& p, Numbers& block, Running& running);
};

/// Each P/Q is a fraction of the whole: P' = P Q_run + P_run Q, Q' = Q Q_run.
template <>
struct Folding<BinaryBBP::Family> {
    using Numbers = BinaryBBP::Family::Numbers<BigFloat>;
    using Running = std::array<BigFloat, 2>; // P, Q
    static constexpr std::size_t kept = 2;
    static constexpr const char* heading = "Series BinaryBBP...  ";
    static constexpr std::size_t first_checked = BinaryBBP::P, last_checked_end = BinaryBBP::Q + 1;

    static std::size_t number_words(std::size_t index, const BlockPrecision& p) {
        return index == BinaryBBP::scratch ? 0 : folded_words(p.at_a);
    }
    static constexpr std::size_t longest_product(const BlockPrecision& p) {
        return p.longest + folded_words(p.at_b) + product_margin; // all are of a block's number and a carried one
    }
    static void take(const MultiplyParameters& pars, const BlockPrecision& p, const Numbers& block, Running& running);
    static void fold(const MultiplyParameters& pars, const BlockPrecision& p, Numbers& block, Running& running);
};

/// With a0 .. a3 the block's and b1 .. b3 the carried numbers: b1' = a1 b1, b2' = a2 b1^2 + b2,
/// b3' = a3 b1^3 + a0 b1 b2 + a1 b3.
template <>
struct Folding<BrentMcMillanAB::Family> {
    using Numbers = BrentMcMillanAB::Family::Numbers<BigFloat>;
    using Running = std::array<BigFloat, 3>; // N1, N2, N3
    static constexpr std::size_t kept = 7;
    static constexpr const char* heading = "Series A and B...  ";
    static constexpr std::size_t first_checked = BrentMcMillanAB::N1, last_checked_end = BrentMcMillanAB::N3 + 1;

    static std::size_t number_words(std::size_t, const BlockPrecision& p) { return folded_words(p.at_a); }
    static constexpr std::size_t longest_product(const BlockPrecision& p) {
        return 2 * folded_words(p.at_a) + product_margin;
    }
    static void take(const MultiplyParameters& pars, const BlockPrecision& p, const Numbers& block, Running& running);
    static void fold(const MultiplyParameters& pars, const BlockPrecision& p, Numbers& block, Running& running);
};

} // namespace zvp::BinarySplitting
