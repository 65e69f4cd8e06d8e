#include "parallel/topology/core_list.h"

#include <gtest/gtest.h>

namespace {

using namespace zvp;

TEST(CoreList, ALineBreaksAtTheWrongColumn) {
    const struct {
        CoreSet cores;
        std::size_t indent, width;
        const char* text;
    } cases[] = {
        {{}, 4, 60, "    (none)\n"},
        {{0}, 0, 60, "0 \n"},
        {{0, 1}, 2, 60, "  0-1 \n"},
        {{0, 2, 3, 4, 6, 9, 10}, 1, 60, " 0 2-4 6 9-10 \n"},
        {{0, 2, 4}, 2, 6, "  0 2 \n  4 \n"}, // the second line feed falls behind a full line
        {{0, 2, 4}, 2, 5, "  0 \n  2 \n  4 \n"},
        {{1000, 1001}, 2, 4, "  1000-1001 \n"}, // wider than a line, but without an empty one before it
        {{4294967294u, 4294967295u}, 0, 60, "4294967294-4294967295 \n"},
    };
    for (const auto& c : cases) EXPECT_EQ(core_list_text(c.cores, c.indent, c.width), c.text);
}

} // namespace
