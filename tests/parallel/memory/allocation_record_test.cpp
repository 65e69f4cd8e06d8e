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
    // The spread of percentages on nodes.
    const struct {
        std::vector<std::uint64_t> nodes;
        const char* spread;
    } spreads[] = {{{50, 50}, "100.0%/2"},
                   {{75, 25}, "50.0%/2"},     // 1 - sqrt(1250 / 1 * 2) / 100
                   {{60, 30, 10}, "56.4%/3"}, // 1 - sqrt(1266.67 / 2 * 3) / 100
                   {{90, 0, 0}, "0.0%/3"},
                   {{0, 0}, "100.0%/2"}};
    for (const auto& expect : spreads) {
        AllocationRecord record;
        for (std::uint32_t i = 0; i < expect.nodes.size(); ++i) record.nodes[i] = expect.nodes[i];
        EXPECT_TRUE(record.one_line().ends_with(std::string("(spread: ") + expect.spread + ")")) << record.one_line();
    }
    for (const RecordCase& expect : cases) {
        SCOPED_TRACE(expect.one_line);
        const AllocationRecord record{expect.total, expect.large, expect.locked, expect.page, expect.nodes, {}};
        EXPECT_EQ(record.item_lines(), expect.lines);
        EXPECT_EQ(record.one_line(), expect.one_line);
    }
}

} // namespace
