#include "app/console/console.h"
#include "app/console/console_lock.h"
#include "app/console/linear_console_status.h"
#include "app/console/linear_network_status.h"
#include "app/console/run_watch.h"
#include "app/console/tracked_measurements.h"
#include "app/failure/child_thread.h"
#include "app/raised.h"
#include "platform/console_io.h"
#include "support/process.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <mutex>
#include <optional>
#include <regex>
#include <string>
#include <thread>

namespace {

using namespace zvp;
using test::printed_by;
using test::raised_by;

TEST(StatusSink, RedirectedOutputGetsTheLinesAndNothingElse) {
    const std::string printed = printed_by([] {
        LinearConsoleRoot root(79, 0);
        StatusNode& node = root.begin_task("Computing...");
        StatusIteration& iteration = node.make_iteration({'w', "Terms: "}, 10, IterationMode::percent, true);
        iteration.advance(5);
        root.update(true);
        root.print_cells({{'G', "a"}, {'w', "b"}});
        root.print_pair(8, "Digits:", {'T', "50"});
        root.print_time("Division", 1.5);
        root.warning("Careful.");
        root.end_task(7200);
    });
    EXPECT_EQ(printed, "Computing...\nab\nDigits: 50\nDivision:  1.500 seconds  ( 0.025 minutes )\n\nCareful.\n"
                       "Time:    7200.000 seconds  ( 2.000 hours )\n");
}

TEST(StatusSink, TaskThatFailsPrintsNoTime) {
    struct Task {
        LinearConsoleRoot& root;
        ~Task() { root.end_task(1); }
    };
    const std::string printed = printed_by([] {
        LinearConsoleRoot root;
        try {
            const Task task{root};
            throw StringException("", "fails");
        } catch (const StringException&) {
        }
    });
    EXPECT_EQ(printed, "\n");
}

TEST(StatusChain, StaysLinear) {
    LinearConsoleRoot root;
    StatusNode* node = nullptr;
    printed_by([&] { node = &root.begin_task(""); });
    const StatusCell cell{'w', "cell"};
    const StatusFrame foreign{{node}, 0};
    const std::string pop = "StringException: Attempted to pop a non-existent node.";
    const std::string poll = "StringException: Polling is not supported.";
    const std::string fork = "StringException: Attempted to fork a linear status chain.";
    const std::string extend = "StringException: Attempted to extend a linear status chain.";
    EXPECT_EQ(raised_by([&] { node->pop_frame(foreign); }), pop);
    EXPECT_EQ(raised_by([&] { node->get_tree(); }), poll);
    {
        const StatusScope scope(*node, node->make_node(cell));
        EXPECT_EQ(raised_by([&] { node->make_node(); }), fork);
        EXPECT_EQ(raised_by([&] { node->make_iteration(cell, 1, IterationMode::none, false); }), fork);
        EXPECT_EQ(raised_by([&] { node->pop_frame(foreign); }), pop);
    }
    // The scope has made room for another child.
    StatusIteration& iteration = node->make_iteration(cell, 9, IterationMode::fraction, true);
    EXPECT_EQ(raised_by([&] { iteration.make_node(cell); }), extend);
    EXPECT_EQ(raised_by([&] { iteration.push_node(nullptr); }), extend);
    EXPECT_EQ(raised_by([&] { iteration.make_iteration(cell, 1, IterationMode::none, false); }),
              "StringException: Iteration stacking is not supported.");
    EXPECT_EQ(raised_by([&] { iteration.pop_frame(foreign); }), pop);
    EXPECT_EQ(raised_by([&] { iteration.get_tree(); }), poll);
    EXPECT_EQ(raised_by([&] { iteration.get_completed(); }), poll);
}

void draw_sample() {
    print("<<");
    LinearConsoleRoot root(24, 1000);
    StatusNode& node = root.begin_task("Task");
    node.push_cell({'w', "Series: "});
    {
        StatusIteration& sum = node.make_iteration({'w', "Sum ( "}, 250, IterationMode::fraction, true);
        const StatusScope scope(node, sum);
        sum.advance(50); // draws, since nothing is shown
        sum.advance(50); // within the refresh interval
        sum.update(true);
    }
    {
        const std::uint64_t largest = ~std::uint64_t{0}; // 100 times it overflows
        StatusIteration& part = node.make_iteration({'Y', "part "}, largest, IterationMode::percent, false);
        const StatusScope scope(node, part);
        part.set_completed(largest / 3 * 2);
        part.update(true);
    }
    node.push_cells({{'w', "seventeen columns"}, {'w', "x"}});
    root.update(true);
    node.pop_frame({{}, 2});
    node.push_cell({'w', "σ sixteen column"});
    root.update(true);
    root.end_task(1.5);
    print(">>");
}

TEST(StatusLine, IsRedrawnInPlaceOnATerminal) {
    const char* variable = "ZORVANE_TEST_DRAWS";
    if (std::getenv(variable)) return draw_sample();
    test::ProgramRun run;
    run.arguments = {"/proc/self/exe", "--gtest_filter=StatusLine.IsRedrawnInPlaceOnATerminal"};
    run.environment = {{variable, "1"}};
    run.terminal = true;
    const std::string output = test::run_program(run).output;
    const std::size_t begin = output.find("<<");
    const std::size_t end = output.find(">>");
    ASSERT_TRUE(begin < end && end != std::string::npos) << output;
    const std::string erased = "\r" + std::string(24, ' ') + "\r";
    std::string expected = "Task\r\n";
    for (const char* line : {"Series: Sum ( \x1b[92m 50 / 250)\x1b[0m", // 24 columns
                             "Series: Sum ( \x1b[92m100 / 250)\x1b[0m", //
                             "Series: \x1b[93mpart \x1b[0m66 %",        //
                             "Series: ",                                // the line ends before a cell of 17 columns
                             "Series: σ sixteen column",                //
                             "Time:    \x1b[96m1.500 seconds  ( 0.025 minutes )\r\n\x1b[0m"})
        expected += erased + line;
    EXPECT_EQ(output.substr(begin + 2, end - begin - 2), expected);
}

TEST(NetworkStatus, TheTreeIsWhatTheChainShows) {
    StatusTreeLock lock;
    LinearNetworkNode root(lock);
    root.push_cell({'w', "Sum"});
    StatusNode& child = root.make_node({'G', "Block"});
    {
        StatusIteration& count = child.make_iteration({'w', "(Terms "}, 10, IterationMode::fraction, true);
        const StatusScope scope(child, count);
        count.advance(3);
        count.advance(4);
        EXPECT_EQ(count.get_completed(), 7u);
        EXPECT_EQ(raised_by([&] { child.make_node(); }), "StringException: Attempted to fork a linear status chain.");
        const std::string json = std::regex_replace(root.get_tree().to_json(), std::regex("\\s+"), "");
        EXPECT_EQ(json, R"x({"Text":[{"Color":"w","Text":"Sum"}],"Children":[)x"
                        R"x({"Text":[{"Color":"G","Text":"Block"}],"Children":[)x"
                        R"x({"Text":[{"Color":"w","Text":"(Terms"},{"Color":"G","Text":"7/10)"}],"Children":[]}]}]})x");
    }
    EXPECT_EQ(child.get_tree().get_array("Children").size(), 0u);
}

TEST(Interrupt, NamesTheTaskAndTheFileAndEndsWith130) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            platform::restore_terminal_at_signals();
            const RunWatch watch("Pi");
            const FileInProgress file("/disk/Pi.txt");
            note_running_task("Writing");
            test::show_output();
            std::raise(SIGINT);
            std::this_thread::sleep_for(std::chrono::seconds(10));
        },
        testing::ExitedWithCode(130),
        "^Interrupted: Pi, in \"Writing\", after [0-9]+.*\nIncomplete file: /disk/Pi.txt\n");
}

TEST(Interrupt, TheSecondOneAndOneOutsideARunEndTheProcess) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    for (const bool running : {true, false}) {
        const auto interrupted = [&] {
            platform::restore_terminal_at_signals();
            std::optional<RunWatch> watch("Pi");
            const std::lock_guard held(console_mutex()); // for which the first one waits
            if (!running) watch.reset();
            std::raise(SIGINT);
            std::raise(SIGINT);
        };
        EXPECT_EXIT(interrupted(), testing::KilledBySignal(SIGINT), "");
    }
}

TEST(TrackedMeasurements, SumPhasesAndCountNestedOnesOnce) {
    TrackedMeasurements sum;
    sum.close(); // of nothing
    for (int phase = 0; phase < 2; ++phase) {
        sum.open();
        sum.open();
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        sum.close();
        sum.close();
    }
    EXPECT_GE(sum.wall_seconds, 0.04);
    EXPECT_LT(sum.user_seconds + sum.kernel_seconds, 0.02);
}

TEST(ChildThread, WhatLeavesItEndsTheProgram) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            test::show_output();
            run_child_thread([] { throw StringException("f()", "fails"); });
        },
        testing::ExitedWithCode(1),
        "In Function: f\\(\\)\n\nfails\n(\n)*FATAL ERROR: Unhandled exception in child thread.\n");
}

} // namespace
