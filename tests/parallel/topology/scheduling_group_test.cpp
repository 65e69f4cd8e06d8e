#include "parallel/topology/scheduling_group.h"

#include "app/notation/parser.h"
#include "app/raised.h"
#include "parallel/topology/machines.h"
#include "support/program.h"

#include <gtest/gtest.h>

namespace {

using namespace zvp;
using test::raised_by;

/// Cores 0-2 in group 0, 3-6 in group 1.
const CoreMap& two_groups() {
    static const CoreMap map(test::machine_of({3, 4}));
    return map;
}

std::string shown(const SchedulingGroup& group) {
    return test::printed_by([&] { group.print(); });
}

TEST(SchedulingGroup, TheMaskDoesNotFollowTheCores) {
    SchedulingGroup group(two_groups());
    EXPECT_EQ(shown(group), "Group: 0 - Mask: 0");
    ((group |= 6) |= 3) |= 3;
    EXPECT_EQ(shown(group), "Group: 1 - Mask: 9");
    EXPECT_EQ(group.cores(), (CoreSet{3, 6}));
    EXPECT_EQ(group.core_count(), 2u);
    const SchedulingGroup before = group;
    group ^= 5;
    EXPECT_EQ(shown(group), "Group: 1 - Mask: d");
    group ^= 5;
    EXPECT_EQ(group, before);
    EXPECT_EQ(group.mask(), before.mask());
    (group ^= 3) ^= 6; // the last core gone, one of another group may come
    EXPECT_TRUE(group.mask().empty());
    EXPECT_TRUE(group.empty());
    EXPECT_EQ(shown(group |= 2), "Group: 0 - Mask: 4");
}

TEST(SchedulingGroup, AForeignCoreJoinsOrBreaksTheSet) {
    SchedulingGroup group(two_groups());
    group |= 4;
    const struct {
        unsigned core;
        const char* text;
    } cases[] = {{7, "Core 7 doesn't exist."},
                 {4294967295u, "Core 4294967295 doesn't exist."},
                 {2, "Core 2 is not compatible with processor group 1."}};
    for (const auto& c : cases) {
        for (const bool toggles : {false, true}) {
            try {
                toggles ? group ^= c.core : group |= c.core;
                ADD_FAILURE() << c.text;
            } catch (const InvalidParametersException& exception) {
                EXPECT_EQ(exception.function,
                          toggles ? "SchedulingGroup::operator^=()" : "SchedulingGroup::operator|=()");
                EXPECT_EQ(exception.message, c.text);
            }
            EXPECT_EQ(shown(group), "Group: 1 - Mask: 2");
        }
    }
}

TEST(SchedulingGroup, AMaskWithoutACoreIsBound) {
    SchedulingGroup group(two_groups());
    const std::string output = test::printed_by([&] {
        group = SchedulingGroup(ProcessorMask({2, 3, 4, 200}), 1, two_groups());
    });
    EXPECT_EQ(output, "Warning: Skipping invalid KAFFINITY mask.\nWarning: Skipping invalid KAFFINITY mask.\n");
    EXPECT_EQ(group.cores(), (CoreSet{5, 6}));
}

TEST(SchedulingGroup, ItsArrayDoesNotReadBack) {
    SchedulingGroup group(two_groups());
    EXPECT_EQ(group.to_array().size(), 0u);
    (group |= 6) |= 4;
    const std::unique_ptr<Node> read = parse_notation_text(group.to_array().to_text());
    EXPECT_EQ(SchedulingGroup::from_array(read->as_array(""), two_groups()), group);
    const std::pair<const char*, const char*> broken[] = {
        {"[3 9]", "InvalidParametersException: Core 9 doesn't exist."},
        {"[-1]", "InvalidParametersException: Core -1 doesn't exist."},
        {"[4294967299]", "InvalidParametersException: Core 4294967299 doesn't exist."}, // 3 modulo 2^32
        {"[3 2]", "InvalidParametersException: Core 2 is not compatible with processor group 1."},
        {"[\"3\"]", "ParseException: Expected Integer, got String."}};
    for (const auto& [text, error] : broken) {
        const std::unique_ptr<Node> array = parse_notation_text(text);
        EXPECT_EQ(raised_by([&] { SchedulingGroup::from_array(array->as_array(""), two_groups()); }), error);
    }
}

} // namespace
