#include "parallel/topology/thread_placement.h"

#include "parallel/topology/machines.h"
#include "platform/process.h"
#include "support/program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <sys/resource.h>
#include <thread>

namespace {

using namespace zvp;

/// What `function` prints on a thread of its own, whose place and priority end with it.
template <class Function>
std::string printed_in_thread(Function&& function) {
    return test::printed_by([&] { std::thread(function).join(); });
}

std::vector<unsigned> own_cores() {
    platform::ThreadAffinity affinity;
    EXPECT_EQ(platform::read_thread_affinity(affinity), 0);
    return affinity.bits;
}

TEST(Binding, AThreadRunsElsewhere) {
    const CoreMap& map = core_map();
    for (unsigned core = 0; core < map.size(); ++core) {
        std::thread([&] {
            const std::vector<unsigned> before = own_cores();
            SchedulingGroup group;
            EXPECT_EQ(group.bind_thread(), 0);
            EXPECT_EQ(own_cores(), before); // the empty set binds nothing
            EXPECT_EQ((group |= core).bind_thread(), 0);
            EXPECT_EQ(own_cores(), std::vector{map.find(core)->bit});
            EXPECT_EQ(platform::current_processor().bit, map.find(core)->bit);
        }).join();
    }
}

TEST(GroupAssigner, OneGroupDoesNotGiveAllCores) {
    topology(); // prints
    EXPECT_EQ(printed_in_thread([] {
                  for (const std::size_t index : {std::size_t{0}, std::size_t{1}, ~std::size_t{0}}) {
                      platform::bind_thread_to_core(platform::usable_cores().front());
                      assign_thread_to_group(index);
                      EXPECT_EQ(own_cores(), platform::usable_cores());
                  }
              }),
              "");
}

TEST(GroupAssigner, AFailureIsHiddenOrRepeated) {
    const unsigned core = platform::usable_cores().front();
    const std::string actual = ProcessorMask({core}).to_hex();
    const ProcessorMask beyond({core, 500'000});
    const std::string suppressed = "Further messages of this message will be suppressed.\n";
    const struct {
        platform::MachineTopology machine;
        std::string expected;
    } cases[] = {
        {{{{0, {{core, 0}, {500'000, 0}}}}}, // the system leaves out the second core
         "\nWarning: Unable to set processor group affinity: 0\nExpected Group: 0\nExpected Mask : " + beyond.to_hex()
             + "\nActual Group  : 0\nActual Mask   : " + actual + "\n" + suppressed},
        {{{{0, {}}}}, "\nGetActiveProcessorCount() returned zero.\n"},
        {{{{5, {{3, 0}}}}},
         "\nWarning: Unable to set processor group affinity: " + std::to_string(EINVAL)
             + "\nExpected Group: 5\nExpected Mask : 8\nActual Group  : 0\nActual Mask   : " + actual + "\n"
             + suppressed},
    };
    for (const auto& c : cases) {
        const Topology machine(c.machine);
        GroupAssigner assigner(machine);
        EXPECT_EQ(printed_in_thread([&] {
                      platform::bind_thread_to_core(core);
                      for (std::size_t index = 0; index < 3; ++index) assigner.assign(index);
                      EXPECT_EQ(own_cores(), std::vector{core});
                  }),
                  c.expected);
    }
}

TEST(Priority, ALevelIsMappedToTheWrongNiceValue) {
    const int base = platform::process_nice_value();
    const struct {
        std::int32_t level;
        int nice;
        const char* name;
    } cases[] = {{-2147483647 - 1, 19, "Idle Priority"},
                 {-4, 19, "Idle Priority"},
                 {-3, 19, "Idle Priority"},
                 {-2, base + 10, "Idle Priority"},
                 {-1, base + 5, "Below Normal Priority"},
                 {0, base, "Normal Priority"},
                 {1, base - 4, "Above Normal Priority"},
                 {2, base - 7, "Highest Priority"},
                 {3, -20, "Time Critical Priority"},
                 {4, -20, "Time Critical Priority"},
                 {2147483647, -20, "Time Critical Priority"}};
    for (const auto& c : cases) {
        EXPECT_EQ(thread_priority_name(c.level), c.name);
        int nice = 100;
        const std::string output = printed_in_thread([&] {
            set_thread_priority(c.level);
            nice = getpriority(PRIO_PROCESS, 0); // of this thread
        });
        const bool refused = c.level > 0 && output == "\nWarning: Unable to set thread priority.\n";
        EXPECT_TRUE(refused || output.empty()) << output;
        EXPECT_EQ(nice, refused ? base : std::clamp(c.nice, -20, 19)) << c.level;
    }
    EXPECT_EQ(getpriority(PRIO_PROCESS, 0), base) << "the priority of another thread changed";
}

} // namespace
