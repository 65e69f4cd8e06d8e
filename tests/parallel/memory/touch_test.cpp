#include "parallel/memory/touch.h"

#include "parallel/memory/fake_memory.h"
#include "parallel/memory/residency.h"
#include "parallel/tasks/simple_frameworks.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace {

using namespace zvp;

/// The fill, word by word.
void plain_touch(std::byte* p, std::size_t bytes) {
    if (bytes == 0) return;
    p[0] = std::byte{0x7B};
    p[bytes - 1] = std::byte{0x40};
    std::size_t at = 0;
    while (reinterpret_cast<std::uintptr_t>(p + at) % 4 != 0) ++at;
    for (std::uint32_t i = 0; at + 4 <= bytes; ++i, at += 4) {
        const std::uint32_t word = i * i * 0xC82B9175 + 0xC857661B;
        std::memcpy(p + at, &word, sizeof word);
    }
}

TEST(Touch, FillsExactlyItsRegion) {
    for (std::size_t begin = 64; begin < 68; ++begin)
        for (const std::size_t bytes : {0u, 1u, 2u, 3u, 4u, 7u, 8u, 63u, 64u, 65u, 127u, 1000u}) {
            SCOPED_TRACE(testing::Message() << bytes << " bytes at " << begin);
            alignas(64) std::byte got[1200]{}, expected[1200]{};
            touch(got + begin, bytes);
            plain_touch(expected + begin, bytes);
            EXPECT_EQ(std::memcmp(got, expected, sizeof got), 0);
        }
}

TEST(Touch, TasksTakeAQuarterOfTheDecomposition) {
    SpawnFramework threads(64);
    std::vector<std::byte> got(1000), expected(1000);
    touch_in_parallel({12, &threads}, got.data(), got.size());
    for (const std::size_t begin : {0u, 334u, 668u})
        plain_touch(expected.data() + begin, std::min<std::size_t>(334, 1000 - begin));
    EXPECT_EQ(got, expected);

    const struct {
        ParallelContext context;
        std::size_t bytes;
        std::uint32_t tasks;
        std::size_t block;
    } cases[] = {{{64, nullptr}, 1000, 1, 1000},
                 {{7, &threads}, 1000, 1, 1000},
                 {{8, &threads}, 1001, 2, 501},
                 {{64, &threads}, 10, 16, 1}}; // more tasks than bytes: the last have nothing to do
    for (const auto& expect : cases) {
        const TouchBlocks blocks(expect.context, expect.bytes);
        EXPECT_EQ(blocks.tasks, expect.tasks);
        EXPECT_EQ(blocks.block, expect.block);
        EXPECT_EQ(blocks.end(expect.tasks - 1), expect.bytes);
        EXPECT_LE(blocks.begin(expect.tasks - 1), expect.bytes);
    }
}

TEST(Residency, CountsTheBytesOfPartialPages) {
    alignas(4096) static std::byte region[5 * 4096];
    test::FakeMemory system;
    system.node_of = [&](void* page) { // nodes 0, 1, unknown, 1, 0
        const auto number = (static_cast<std::byte*>(page) - region) / 4096;
        return number == 2 ? -ENOENT : static_cast<int>(number % 2);
    };
    const NodeBytes inner{{0, 96 + 10}, {1, 2 * 4096}};
    SpawnFramework threads(64);
    for (const ParallelContext& context : {ParallelContext{}, ParallelContext{20, &threads}}) {
        EXPECT_EQ(count_node_bytes(context, system, region + 4000, 96 + 3 * 4096 + 10), inner);
    }
    EXPECT_EQ(count_node_bytes({}, system, region + 100, 50), (NodeBytes{{0, 50}}));
    EXPECT_EQ(count_node_bytes({}, system, region, 0), NodeBytes{});
    system.query_error = EPERM;
    EXPECT_EQ(count_node_bytes({}, system, region, sizeof region), NodeBytes{});
}

} // namespace
