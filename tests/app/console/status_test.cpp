#include "app/console/console.h"
#include "app/console/linear_console_status.h"
#include "app/raised.h"
#include "support/program.h"

#include <cstdlib>
#include <string>

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

} // namespace
