#include "parallel/tasks/action.h"
#include "parallel/tasks/task_handle.h"
#include "platform/work_queue.h"
#include "support/process.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace {

using namespace zvp;
using test::Action;

struct Sleep final : BasicAction {
    void run(std::uint32_t milliseconds) override {
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
        done = true;
    }
    std::atomic<bool> done{false};
};

struct Fail final : BasicAction {
    void run(std::uint32_t index) override { throw index; }
};

TEST(ExceptionHolder, TheFirstExceptionWinsAndAnUncheckedHolderStopsTheProgram) {
    ExceptionHolder holder;
    for (const int value : {1, 2}) {
        try {
            throw value;
        } catch (...) {
            holder.capture_current();
        }
    }
    holder.mark_checked();
    for (int i = 0; i < 2; ++i) { // a copy is thrown each time
        try {
            holder.rethrow_if_any();
            FAIL();
        } catch (int value) {
            EXPECT_EQ(value, 1);
        }
    }
    // Nothing is thrown into an exception that is on its way, and nothing is lost by it.
    struct AtExit {
        ~AtExit() { holder.rethrow_if_any(); }
        ExceptionHolder& holder;
    };
    try {
        const AtExit at_exit{holder};
        throw std::string("outer");
    } catch (const std::string& outer) {
        EXPECT_EQ(outer, "outer");
    }
    EXPECT_EXIT(
        {
            test::show_output();
            ExceptionHolder();
        },
        testing::ExitedWithCode(1), "Exceptions not handled!");
}

TEST(TaskHandles, WaitJoinAndTimeOut) {
    Sleep sleep;
    AsyncHandle handle;
    EXPECT_TRUE(handle.wait_for(0)); // nothing to wait for
    dispatch_async(handle, sleep, 200);
    EXPECT_FALSE(handle.wait_for(1));
    EXPECT_FALSE(handle.join_for(1));
    EXPECT_TRUE(handle.join_for(~std::uint64_t{0})); // far beyond what the clock can tell
    EXPECT_TRUE(sleep.done);

    Fail fail;
    dispatch_async(handle, fail, 5);
    handle.wait(); // waiting throws nothing
    EXPECT_THROW(handle.join(), std::uint32_t);

    Sleep first;
    std::atomic<bool> in_order{false};
    Action second([&](std::uint32_t) { in_order = first.done.load(); });
    dispatch_async(handle, first, 50);
    dispatch_async(handle, second, 0); // begins behind the first's end
    handle.join();
    EXPECT_TRUE(in_order);

    FutureTaskHandle invalid{std::future<void>()};
    EXPECT_THROW(invalid.join(), std::future_error);
}

TEST(WaitableAction, OutlivesTheThreadThatRunsIt) {
    for (int i = 0; i < 200; ++i) {
        Sleep sleep;
        auto action = std::make_unique<WaitableAction>(sleep);
        std::thread runner([&, running = action.get()] { running->run(0); });
        EXPECT_TRUE(i % 2 == 0 || action->wait_for(~std::uint64_t{0}));
        action.reset(); // waits until the runner has let go of it
        EXPECT_TRUE(sleep.done);
        runner.join();
    }
}

TEST(WorkQueue, AWaiterRunsWhatNobodyHasBegun) {
    constexpr int items = 200;
    std::atomic<int> runs{0};
    platform::WorkItem work[items];
    for (platform::WorkItem& item : work)
        platform::submit_work(
            item, [](void* count) { ++*static_cast<std::atomic<int>*>(count); }, &runs);
    for (platform::WorkItem& item : work) platform::wait_for_work(item);
    EXPECT_EQ(runs, items);
    platform::wait_for_work(work[0]); // let go of
}

} // namespace
