#include "multiply/contract/range_trimming.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>

namespace {

using namespace zvp;

using Shape = std::array<std::size_t, 6>; // s, e, first word and length of A, of B

const std::uint32_t words[32] = {};

Shape shape(const ProductRange<std::uint32_t>& r) {
    return {r.s, r.e, static_cast<std::size_t>(r.A - words), r.AL, static_cast<std::size_t>(r.B - words), r.BL};
}

TEST(RangeTrimming, NoWordStaysThatTheRangeCanDoWithout) {
    const struct {
        std::size_t s, e, AL, BL;
        Shape expected;
    } cases[] = {
        {0, 17, 9, 8, {0, 17, 0, 9, 0, 8}},  {8, 17, 9, 8, {8, 17, 0, 9, 0, 8}},
        {9, 17, 9, 8, {8, 16, 1, 8, 0, 8}},                                    // carries of A's lowest word
        {12, 17, 9, 8, {5, 10, 4, 5, 3, 5}},                                   // of both
        {16, 17, 9, 8, {1, 2, 8, 1, 7, 1}},                                    // the top words only
        {0, 9, 9, 8, {0, 9, 0, 9, 0, 8}},    {0, 8, 9, 8, {0, 8, 0, 8, 0, 8}}, // A's top word lies above
        {2, 5, 9, 8, {2, 5, 0, 5, 0, 5}},                                      // the end is below the shorter operand's
        {10, 12, 20, 3, {3, 5, 7, 5, 0, 3}},                                   // the middle: both ends of A
        {4, 6, 3, 20, {3, 5, 1, 5, 0, 3}},                                     // the longer operand comes first
        {3, 5, 6, 0, {0, 2, 3, 2, 0, 0}},
    };
    for (const auto& c : cases) {
        const ProductRange<std::uint32_t> range{c.s, c.e, words, c.AL, words, c.BL};
        const auto trimmed = trim_range(range);
        EXPECT_EQ(shape(trimmed), c.expected) << c.s << " " << c.e << " of " << c.AL << " by " << c.BL;
        EXPECT_EQ(shape(trim_range(trimmed)), c.expected) << "trimmed twice";
    }
}

TEST(RangeTrimming, SquaresToo) {
    const struct {
        std::size_t s, e, L;
        std::array<std::size_t, 4> expected; // s, e, first word, length
    } cases[] = {
        {0, 18, 9, {0, 18, 0, 9}}, {9, 18, 9, {9, 18, 0, 9}}, {10, 18, 9, {8, 16, 1, 8}}, {17, 18, 9, {1, 2, 8, 1}},
        {2, 5, 9, {2, 5, 0, 5}},   {12, 13, 9, {6, 7, 3, 6}}, {0, 0, 0, {0, 0, 0, 0}},
    };
    for (const auto& c : cases) {
        const auto r = trim_range(SquareRange<std::uint32_t>{c.s, c.e, words, c.L});
        EXPECT_EQ((std::array<std::size_t, 4>{r.s, r.e, static_cast<std::size_t>(r.A - words), r.AL}), c.expected)
            << c.s << " " << c.e << " of " << c.L;
    }
}

} // namespace
