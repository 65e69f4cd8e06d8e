// The three-pass repair by itself: blocks of ones and zeros, carries of both signs, a grid that ends at the array's end.

#include "multiply/words/carry_repair.h"

#include "operands.h"

#include <array>

namespace {

using namespace zvp;
using test::Integer;
using test::ones;

template <class Word>
struct CarryRepair : testing::Test {};
using WordKinds = testing::Types<c32i, c64i>;
TYPED_TEST_SUITE(CarryRepair, WordKinds);

/// c * W^n on the side of its sign.
template <class Word>
void add_signed(Integer& positive, Integer& negative, int c, std::size_t n) {
    if (c == 0) return;
    Integer& side = c > 0 ? positive : negative;
    side = side + Integer(static_cast<c64i>(std::abs(c))).times_power<Word>(n);
}

TYPED_TEST(CarryRepair, CarriesRunThroughWholeBlocksAndOutOfTheArray) {
    using Word = TypeParam;
    SCOPED_TRACE(test::seed_trace());
    std::mt19937_64 random(test::seed());
    const test::Contexts contexts;
    for (unsigned round = 0; round < 400; ++round) {
        const auto& [name, ctx] = contexts.cases[random() % contexts.cases.size()];
        const bool long_enough = random() % 4 != 0;
        const std::size_t B = long_enough ? 4096 : 16;
        const auto count = static_cast<std::uint32_t>(2 + random() % 6);
        const std::size_t offset = random() % 2 ? 2 : 4;
        // The last block has 1, 2, 3 or some words; with up to `offset` it lies beyond the words that carry_pass() cuts.
        const std::size_t n = (count - 1) * B + 1 + (random() % 2 ? random() % 6 : random() % B);
        SCOPED_TRACE("round " + std::to_string(round) + ", " + name + ", n " + std::to_string(n) + ", blocks "
                     + std::to_string(count));

        test::Words<Word> T(n);
        std::array<BlockCarry, max_blocks> blocks;
        Integer added, taken;
        for (std::uint32_t i = 0; i < count; ++i) {
            const unsigned kind = random() % 8;
            const std::size_t begin = std::min(n, i == 0 ? 0 : i * B + offset), end = std::min(n, (i + 1) * B + offset);
            for (std::size_t k = begin; k < end; ++k) T[k] = kind < 3 ? ones<Word> : kind < 6 ? 0 : Word(random());
            if (kind == 6 && begin < end) T[begin + random() % (end - begin)] = 0;
            blocks[i].carry = static_cast<std::int8_t>(static_cast<int>(random() % 3) - 1);
            if (offset + i * B > n) blocks[i].carry = 0;
            add_signed<Word>(added, taken, blocks[i].carry, offset + i * B);
        }
        const Integer before = test::value(T) + added;
        const int out = carry_pass(blocks.data(), count, B, T.data(), n, offset, ctx);
        Integer gone_up, gone_down;
        add_signed<Word>(gone_up, gone_down, out, n);
        ASSERT_EQ(test::value(T) + gone_up + taken, before + gone_down);
    }
}

TEST(CarryRepairDeath, ABlockWithoutWordsIsAFatalStop) {
    BlockCarry block;
    c32i word = 0;
    EXPECT_EXIT(bp_ksr_carry(block, &word, 0), testing::ExitedWithCode(1), "");
}

} // namespace
