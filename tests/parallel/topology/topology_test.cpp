#include "parallel/topology/topology.h"

#include "app/raised.h"
#include "parallel/topology/machines.h"
#include "support/program.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

using namespace zvp;
using test::machine_of;
using test::raised_by;
using Files = std::vector<std::pair<std::string, std::string>>;

/// What the system's folder with these files tells, as "core:node" for each core.
std::string read_back(const Files& files, const std::vector<unsigned>& usable) {
    const test::TemporaryFolder root;
    for (const auto& [path, content] : files) {
        const std::filesystem::path file = root.path / "sys/devices/system" / path;
        std::filesystem::create_directories(file.parent_path());
        test::write_file(file, content);
    }
    const platform::MachineTopology machine = platform::read_topology(root.path, usable);
    EXPECT_EQ(machine.groups.size(), 1u);
    std::string text;
    for (const auto& core : machine.groups.at(0).cores)
        text += std::to_string(core.bit) + ":" + (core.node ? std::to_string(*core.node) : "-") + " ";
    return text;
}

TEST(SystemFolder, AMachineIsMisread) {
    const struct {
        const char* what;
        Files files;
        std::vector<unsigned> usable;
        const char* expected;
    } cases[] = {
        {"two nodes, numbered beyond 9, one core not ours",
         {{"cpu/online", "0-3\n"}, {"node/node0/cpulist", "0,2\n"}, {"node/node10/cpulist", "1,3\n"}},
         {0, 1, 3},
         "0:0 1:10 3:10 "},
        {"an offline core",
         {{"cpu/online", "0,2-3\n"}, {"node/node0/cpulist", "0,2-3\n"}},
         {0, 1, 2, 3},
         "0:0 2:0 3:0 "},
        {"nodes without memory or cores, other folders",
         {{"node/node0/cpulist", "\n"},
          {"node/node1/cpulist", "0-1\n"},
          {"node/node2/meminfo", ""},
          {"node/node_x/cpulist", "0-1"},
          {"node/node1x/cpulist", "0-1"},
          {"node/possible", "0-2\n"}},
         {0, 1},
         "0:1 1:1 "},
        {"a malformed node", {{"node/node0/cpulist", "0-1,\n"}, {"node/node1/cpulist", "1\n"}}, {0, 1}, "0:- 1:1 "},
        {"nothing but malformed files", {{"cpu/online", "all"}, {"node/node0/cpulist", "0-x"}}, {0, 1}, "0:0 1:0 "},
        {"endless lists", {{"cpu/online", "0-4294967295"}, {"node/node0/cpulist", "0-99999999999"}}, {7}, "7:0 "},
    };
    for (const auto& c : cases) EXPECT_EQ(read_back(c.files, c.usable), c.expected) << c.what;
}

TEST(Topology, AMachineOf130CoresIsNumberedOrPrintedWrong) {
    std::vector<int> nodes; // even cores, odd ones, and the last twenty
    for (int core = 0; core < 130; ++core) nodes.push_back(core < 110 ? core % 2 : 2);
    std::unique_ptr<Topology> machine;
    const std::string output =
        test::printed_by([&] { machine = std::make_unique<Topology>(machine_of({130}, nodes)); });
    EXPECT_EQ(output, "Parsing Core -> Handle Mappings...\n"
                      "Parsing NUMA -> Core Mappings...\n"
                      "    Node  0:  0 2 4 6 8 10 12 14 16 18 20 22 24 26 28 30 32 \n"
                      "              34 36 38 40 42 44 46 48 50 52 54 56 58 60 62 \n"
                      "              64 66 68 70 72 74 76 78 80 82 84 86 88 90 92 \n"
                      "              94 96 98 100 102 104 106 108 \n"
                      "    Node  1:  1 3 5 7 9 11 13 15 17 19 21 23 25 27 29 31 33 \n"
                      "              35 37 39 41 43 45 47 49 51 53 55 57 59 61 63 \n"
                      "              65 67 69 71 73 75 77 79 81 83 85 87 89 91 93 \n"
                      "              95 97 99 101 103 105 107 109 \n"
                      "    Node  2:  110-129 \n"
                      "Parsing Processor Group -> Core Mappings...\n"
                      "    Group  0:  0-129 \n");
    EXPECT_EQ(machine->groups.groups()[0].cores.mask().to_hex(), "3" + std::string(32, 'f'));
    EXPECT_EQ(core_to_node(109, *machine), 1u);

    // The first cores of the system aren't ours.
    const CoreMap ours({{{0, {{4, 0}, {70, 0}}}}});
    EXPECT_EQ(ours.find(1)->bit, 70u);
    EXPECT_EQ(ours.find(0, 70), 1u);
    EXPECT_EQ(ours.find(0, 1), std::nullopt);
}

TEST(Topology, ACoreWithoutANodeIsGivenOne) {
    std::unique_ptr<Topology> machine;
    const std::string output = test::printed_by([&] {
        machine = std::make_unique<Topology>(machine_of({2, 0, 1}, {0, -1, 12}));
    });
    EXPECT_EQ(output, "Parsing Core -> Handle Mappings...\n"
                      "Parsing NUMA -> Core Mappings...\n"
                      "Unable to read NUMA node for core: 1\n"
                      "    Node  0:  0 \n"
                      "    Node 12:  2 \n"
                      "Parsing Processor Group -> Core Mappings...\n"
                      "    Group  0:  0-1 \n"
                      "    Group  1:  (none)\n"
                      "    Group  2:  2 \n");
    for (const unsigned core : {1u, 3u})
        EXPECT_EQ(raised_by([&] { core_to_node(core, *machine); }),
                  "InvalidParametersException: Invalid core id: " + std::to_string(core));
    EXPECT_TRUE(node_to_group(5, *machine).empty());
}

TEST(Topology, ANodeOfTwoGroupsGivesTheSmallerPart) {
    // Cores 0-3 in group 0, 4-7 in group 1.
    const std::pair<std::vector<int>, CoreSet> cases[] = {
        {{1, 1, 1, 7, 7, 1, 1, 1}, {0, 1, 2}}, // as many in either: the lower group
        {{1, 7, 1, 7, 7, 1, 1, 1}, {5, 6, 7}},
        {{7, 7, 7, 7, 1, 7, 7, 7}, {4}},
    };
    for (const auto& [nodes, expected] : cases) {
        const Topology machine(machine_of({4, 4}, nodes));
        const SchedulingGroup group = node_to_group(1, machine);
        EXPECT_EQ(group.cores(), expected);
        EXPECT_EQ(group.group(), *expected.begin() < 4 ? 0 : 1);
    }
}

TEST(Topology, ASetIsSplitWrong) {
    const CoreMap map(machine_of({2, 2, 2}));
    EXPECT_TRUE(core_set_to_groups({}, map).empty());
    const std::vector<SchedulingGroup> groups = core_set_to_groups({1, 4, 5}, map);
    ASSERT_EQ(groups.size(), 2u);
    EXPECT_EQ(groups[0].cores(), CoreSet{1});
    EXPECT_EQ(groups[1].cores(), (CoreSet{4, 5}));
    EXPECT_EQ(groups[1].affinity(), (platform::ThreadAffinity{2, {0, 1}}));
    EXPECT_EQ(raised_by([&] { core_set_to_groups({1, 6}, map); }), "InvalidParametersException: Core 6 not found.");
}

TEST(ProcessorGroups, TheWarningComesForEqualOnes) {
    for (const std::vector<unsigned>& equal : {std::vector{4u}, {4u, 4u, 4u}})
        EXPECT_EQ(test::printed_by([&] { check_processor_groups(machine_of(equal)); }), "");
    EXPECT_EQ(test::printed_by([] {
                  check_processor_groups(machine_of({64, 64, 8}));
              }),
              "Warning: Imbalanced processor groups detected.\n"
              "This may lead to suboptimal performance.\n"
              "    Group  0:  64 cores\n"
              "    Group  1:  64 cores\n"
              "    Group  2:   8 cores\n\n");
}

} // namespace
