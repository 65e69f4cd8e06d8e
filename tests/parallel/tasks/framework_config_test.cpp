#include "app/failure/exceptions.h"
#include "app/notation/parser.h"
#include "app/raised.h"
#include "parallel/tasks/parallelization_settings.h"
#include "support/program.h"

#include <gtest/gtest.h>

namespace {

using namespace zvp;
using test::printed_by;
using test::raised_by;

ParallelizationSettings loaded(const std::string& text) {
    return ParallelizationSettings(parse_notation_text(text)->as_object(""));
}

TEST(ParallelizationSettings, SaveAndLoadGiveTheSameSettings) {
    const struct {
        std::string saved;
        std::string summary;
    } cases[] = {
        {R"(TaskDecomposition : 1 Framework : "none")", "None (No Multi-threading)  ->  9 / ?"},
        {R"(TaskDecomposition : 2 Framework : "cppasync" AsyncOnly : "false" MaxSequentialDispatch : 16)",
         "C++ std::async()  ->  9 / ?  (async | deferred)"},
        {R"(TaskDecomposition : 3 Framework : "spawn" MaxSequentialDispatch : 64)",
         "Thread Spawn (1 Thread/Task)  ->  9 / ?"},
        {R"(TaskDecomposition : 4 Framework : "taskqueue" WorkerThreads : 12)", "Central Dispatch Queue  ->  9 / 12"},
        {R"(TaskDecomposition : 65536 Framework : "pushpool" WorkerThreads : 0 Randomization : "true" )"
         R"(MaxSequentialDispatch : 64)",
         "Push Pool  ->  9 / 0  (randomization on)"},
        {R"(TaskDecomposition : 6 Framework : "winpool" MaxSequentialDispatch : 4)", "System Work Queue  ->  9 / ?"},
    };
    for (const auto& c : cases) {
        const ParallelizationSettings settings = loaded("{" + c.saved + "}");
        EXPECT_EQ(settings.to_config_object().to_text(), parse_notation_text("{" + c.saved + "}")->to_text());
        EXPECT_EQ(settings.framework->summary(9), c.summary);
        EXPECT_TRUE(settings.framework->make_framework());
    }
    const std::string full = loaded(R"({TaskDecomposition:2 Framework:"spawn" MaxSequentialDispatch:4096})")
                                 .to_config_object_full()
                                 .to_text();
    EXPECT_NE(full.find("DisplayText : \"4,096\""), std::string::npos) << full;
}

TEST(ParallelizationSettings, ClampsAndRefuses) {
    const auto text = [](const std::string& settings) {
        return loaded("{TaskDecomposition : 2 " + settings + "}").to_config_object().to_text();
    };
    EXPECT_NE(text(R"(Framework : "spawn" MaxSequentialDispatch : -7)").find("Dispatch : 4\r"), std::string::npos);
    EXPECT_NE(text(R"(Framework : "spawn" MaxSequentialDispatch : 9999999999)").find("Dispatch : 4294967295\r"),
              std::string::npos);
    EXPECT_NE(text(R"(Framework : "taskqueue" WorkerThreads : 99999999999)").find("Threads : 65536\r"),
              std::string::npos);
    const struct {
        std::string settings;
        std::string error;
    } refused[] = {
        {R"(Framework : "none")", "KeyNotFoundException: Key not found: TaskDecomposition"},
        {R"(TaskDecomposition : 0)", "InvalidParametersException: Task decomposition must be between 1 and 65536"},
        {R"(TaskDecomposition : 65537)", "InvalidParametersException: Task decomposition must be between 1 and 65536"},
        {R"(TaskDecomposition : 1)", "KeyNotFoundException: Key not found: Framework"},
        {R"(TaskDecomposition : 1 Framework : "tbb")", "InvalidParametersException: Invalid Parallel Framework: tbb"},
        {R"(TaskDecomposition : 1 Framework : "winpool")",
         "KeyNotFoundException: Key not found: MaxSequentialDispatch"},
        {R"(TaskDecomposition : 1 Framework : "taskqueue")", "KeyNotFoundException: Key not found: WorkerThreads"},
        {R"(TaskDecomposition : 1 Framework : "cppasync" AsyncOnly : "yes")",
         "ParseException: Expected true or false."},
    };
    for (const auto& c : refused) EXPECT_EQ(raised_by([&] { loaded("{" + c.settings + "}"); }), c.error);
}

TEST(ParallelizationSettings, DefaultsFollowTheCores) {
    EXPECT_EQ(printed_by([] { ParallelizationSettings().framework->print_with_tag(); }),
              ParallelizationSettings().framework->display_name()); // and no maps of the machine are built yet
    EXPECT_EQ(default_task_decomposition(1), 1u);
    EXPECT_EQ(default_task_decomposition(2), 2u);
    EXPECT_EQ(default_task_decomposition(6), 12u);
    EXPECT_EQ(default_task_decomposition(64), 64u);
    EXPECT_EQ(default_task_decomposition(100'000), 65'536u);
    EXPECT_EQ(default_framework_config(15)->key(), "pushpool");
    EXPECT_EQ(default_framework_config(16)->key(), "winpool");
    EXPECT_EQ(framework_registry().names(),
              (std::vector<std::string>{"none", "cppasync", "spawn", "taskqueue", "pushpool", "winpool"}));
}

TEST(Sweep, CutsIntoAlignedBlocksThatCoverTheLength) {
    for (const std::size_t length : {1u, 1000u, 8191u, 8192u, 100'000u}) {
        for (const std::uint32_t tds : {1u, 2u, 3u, 64u}) {
            const SweepSplit split = split_sweep(length, 8192, tds, 32, 1024, 16);
            EXPECT_GE(split.tasks * split.block, length);
            EXPECT_LT((split.tasks - 1) * split.block, length);
            EXPECT_LE(split.tasks, length < 8192 ? 1u : std::min(tds, 32u));
            EXPECT_TRUE(split.tasks == 1 || (split.block % 16 == 0 && split.block >= 1024));
        }
    }
}

} // namespace
