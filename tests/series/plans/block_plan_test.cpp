// Where series are cut: against the definitions, index by index.

#include "series/double_double/size_units.h"
#include "series/double_double/stirling.h"
#include "series/plans/block_plan.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace {

using zvp::DoubleDouble;
using zvp::BinarySplitting::BlockPlan;
using zvp::BinarySplitting::BlockRange;

/// Numbers of degree g(x) + q x nats, c nats needed for each term.
class Sizes final : public zvp::BinarySplitting::Series {
public:
    Sizes(std::uint64_t terms, double degree_, double q_, double c_) : degree(degree_), q(q_), c(c_) { N = terms; }

    DoubleDouble log_remaining(std::uint64_t x) const override {
        return DoubleDouble::from_integer(N - x) * DoubleDouble(c);
    }
    std::size_t precision_words(std::uint64_t x) const override {
        return static_cast<std::size_t>(truncated_sum(log_remaining(x) * zvp::words_per_nat())) + 1;
    }
    DoubleDouble log_range(std::uint64_t a, std::uint64_t b) const override { return size(b) - size(a); }
    std::size_t size_words(std::uint64_t a, std::uint64_t b) const override {
        return static_cast<std::size_t>(truncated_sum(log_range(a, b) * zvp::words_per_nat())) + 2;
    }
    std::uint64_t size_digits(std::uint64_t, std::uint64_t) const override { return 0; }
    std::uint64_t midpoint(std::uint64_t a, std::uint64_t b) const override { return (a + b) / 2; }

private:
    DoubleDouble size(std::uint64_t x) const {
        const DoubleDouble t = DoubleDouble::from_integer(x);
        return DoubleDouble(degree) * zvp::stirling(t) + DoubleDouble(q) * t;
    }

    double degree, q, c;
};

constexpr double bit = 0.6931471805599453;

TEST(BlockPlan, LeastBlocksGrowWithTasksByPowersOfTwoUpTo64Mebibits) {
    const std::pair<std::uint32_t, double> bits[] = {{0, 2.0 * 0xE00001}, {1, 2.0 * 0xE00001}, {2, 4.0 * 0xE00001},
                                                     {3, 0x4000000},      {4, 0x4000000},      {1000, 0x4000000}};
    for (const auto& [tasks, expected] : bits)
        EXPECT_NEAR(zvp::BinarySplitting::least_block(tasks).hi, expected * bit, 1e-6) << tasks;
}

TEST(BlockPlan, BisectionsFindTheFirstIndexOfTheirRule) {
    for (const std::uint64_t terms : {1, 2, 3, 500})
        for (const double q : {0.01, 5.0, 40.0}) {
            const Sizes series(terms, 3, q, 30);
            for (std::uint64_t a = 0; a < terms; a += 1 + terms / 50) {
                std::uint64_t c = a + 1;
                while (c < terms && series.log_remaining(c) > series.log_range(a, c)) ++c;
                EXPECT_EQ(equilibrium_index(series, a), c) << terms << " " << q << " " << a;
                for (const double nats : {-1.0, 0.5, 100.0, 2000.0, 1e6}) {
                    c = a + 1;
                    while (c < terms && series.log_range(a, c) < DoubleDouble(nats)) ++c;
                    EXPECT_EQ(reach(series, a, nats), c) << terms << " " << q << " " << a << " " << nats;
                }
            }
        }
}

/// The rules of one block, as the plan should have applied them.
std::uint64_t next_block(const Sizes& series, const BlockPlan& plan, std::uint64_t a) {
    std::uint64_t c = equilibrium_index(series, a);
    const DoubleDouble size = series.log_range(a, c);
    if (size < plan.min_block) c = reach(series, a, plan.min_block);
    if (size > plan.max_block) c = reach(series, a, plan.max_block);
    return c;
}

TEST(BlockPlan, BlocksCoverTheSeriesWithinTheLimits) {
    struct Case {
        std::uint64_t terms;
        double degree, q, c;
        std::size_t max_words;
    };
    const Case cases[] = {
        {70'000, 3, 36.9, 32.7, 100'000},         // the whole is shorter than the least block
        {70'514'000, 3, 36.9, 32.7, 103'810'253}, // a billion digits
        {70'514'000, 3, 36.9, 32.7, 51'905'126},  // in blocks of half the size
        {500'000'000, 3, 21.8, 0.4, 9'000'000},   // slow
        {3'000'000'000'000, 3, 1, 5, 676'000'000'000},
    };
    for (const Case& c : cases) {
        const Sizes series(c.terms, c.degree, c.q, c.c);
        for (const std::uint32_t tasks : {1, 2, 64}) {
            const BlockPlan plan(series, 0, c.terms, tasks, c.max_words);
            std::uint64_t a = 0;
            for (const BlockRange& block : plan.blocks) {
                ASSERT_EQ(block.a, a);
                ASSERT_EQ(block.b, next_block(series, plan, a));
                a = block.b;
            }
            EXPECT_EQ(a, c.terms);
        }
    }
    EXPECT_EQ(BlockPlan(Sizes(70'000, 3, 36.9, 32.7), 0, 70'000, 1, 100'000).blocks.size(), 1u);
    EXPECT_GT(BlockPlan(Sizes(70'514'000, 3, 36.9, 32.7), 0, 70'514'000, 1, 103'810'253).blocks.size(), 5u);
}

/// Each block is of one term, a bit longer than the least block and the largest.
std::string console_text_of(std::uint64_t blocks) {
    const Sizes series(blocks, 0, 0x4000001 * bit, 1e-3);
    testing::internal::CaptureStdout();
    EXPECT_EQ(BlockPlan(series, 0, blocks, 64, 0x200000).blocks.size(), blocks);
    return testing::internal::GetCapturedStdout();
}

std::size_t count(const std::string& text, const std::string& part) {
    std::size_t times = 0;
    for (std::size_t at = text.find(part); at != text.npos; at = text.find(part, at + 1)) ++times;
    return times;
}

TEST(BlockPlan, TenThousandBlocksAreToldOnce) {
    const std::string warning = "Performance Warning: PSR plan has exceeded 10000 blocks.";
    const std::string note = "It is not recommended to proceed with such a computation.\n";
    EXPECT_EQ(console_text_of(9'999), "");
    for (const std::uint64_t blocks : {10'000, 10'001, 12'345}) {
        const std::string text = console_text_of(blocks);
        EXPECT_EQ(count(text, warning), 1u);
        EXPECT_EQ(count(text, note), 1u);
        EXPECT_NE(text.find("PSR plan has reached a size of"), text.npos);
        EXPECT_NE(text.find("there is something wrong with its convergence behavior."), text.npos);
    }
}

} // namespace
