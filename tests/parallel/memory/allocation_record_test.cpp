#include "parallel/memory/allocation_record.h"

#include <gtest/gtest.h>

namespace {

using namespace zvp;
using Lines = std::vector<std::string>;

constexpr std::uint64_t mib = 1 << 20;

struct RecordCase {
    std::uint64_t total, large, locked, page;
    NodeBytes nodes;
    Lines lines;
    const char* one_line;
};

TEST(AllocationRecord, BothForms) {
    const RecordCase cases[] = {
        {100 * mib, 0, 0, 0, {}, {}, " 100 MiB  (spread: ?)"},
        {100 * mib, 0, 0, 0, {{3, 100 * mib}}, {"100% (node 3)"}, " 100 MiB  (spread: 100.0%/1)"},
        {100 * mib, 0, 100 * mib, 0, {}, {"locked"}, " 100 MiB  (locked, spread: ?)"},
        {100 * mib, 0, 100 * mib - 1, 0, {}, {"99% locked"}, " 100 MiB  (99% locked, spread: ?)"},
        {100 * mib, 0, 1, 0, {}, {"0% locked"}, " 100 MiB  (0% locked, spread: ?)"},
        {100 * mib,
         100 * mib,
         100 * mib,
         2 * mib,
         {},
         {"locked", "2.00 MiB pages"},
         " 100 MiB  (locked, 2.00 MiB pages, spread: ?)"},
        {100 * mib, 50 * mib, 0, 2 * mib, {}, {"50% 2.00 MiB pages"}, " 100 MiB  (50% 2.00 MiB pages, spread: ?)"},
        {100 * mib, 50 * mib, 0, 0, {}, {"50% large pages"}, " 100 MiB  (50% large pages, spread: ?)"},
        // Equal nodes by number; only three; never above 100%.
        {100 * mib,
         0,
         0,
         0,
         {{0, 20 * mib}, {1, 40 * mib}, {2, 20 * mib}, {3, 20 * mib}},
         {"40% (node 1)", "20% (node 0)", "20% (node 2)"},
         " 100 MiB  (spread: 80.0%/4)"},
        {mib, 0, 0, 0, {{0, 2 * mib}}, {"100% (node 0)"}, "1.00 MiB  (spread: 100.0%/1)"},
    };
    for (const RecordCase& expect : cases) {
        SCOPED_TRACE(expect.one_line);
        const AllocationRecord record{expect.total, expect.large, expect.locked, expect.page, expect.nodes, {}};
        EXPECT_EQ(record.item_lines(), expect.lines);
        EXPECT_EQ(record.one_line(), expect.one_line);
    }
}

TEST(AllocationRecord, Spread) {
    const struct {
        NodeBytes nodes;
        double spread;
    } cases[] = {
        {{{0, 7}}, 1},
        {{{0, 50}, {1, 50}}, 1},
        {{{0, 100}, {1, 0}}, 0},
        {{{0, 75}, {1, 25}}, 0.5},             // sqrt(1250 / 1 * 2) = 50
        {{{0, 60}, {1, 30}, {2, 10}}, 0.5641}, // sqrt(1266.67 / 2 * 3) = 43.589
        {{{0, 90}, {1, 0}, {2, 0}}, 0},
        {{{0, 0}, {1, 0}}, 1},
    };
    for (const auto& expect : cases) {
        AllocationRecord record;
        record.nodes = expect.nodes;
        EXPECT_NEAR(record.spread(), expect.spread, 5e-5);
    }
}

} // namespace
