#include "parallel/tasks/task_queue.h"

#include "app/raised.h"
#include "parallel/tasks/action.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>

namespace {

using namespace zvp;
using test::Action;

const auto no_start = [](std::uint32_t) {};

/// The order in which tasks ran.
class Log {
public:
    void add(std::uint32_t index) {
        const std::lock_guard lock(mutex);
        entries.push_back(index);
    }
    std::vector<std::uint32_t> seen() {
        const std::lock_guard lock(mutex);
        return entries;
    }
    void wait_for(std::size_t count) {
        while (seen().size() < count) std::this_thread::yield();
    }

private:
    std::mutex mutex;
    std::vector<std::uint32_t> entries;
};

TEST(TaskQueue, NewerRangesRunBehindOlderOnesOrBehindDispatchedTasks) {
    TaskQueue queue(1, no_start);
    Log log;
    std::atomic<bool> gate_open{false}, at_gate{false};
    Action gate([&](std::uint32_t) { // keeps the only worker away until all tasks are queued
        at_gate = true;
        while (!gate_open) std::this_thread::yield();
    });
    Action logs([&](std::uint32_t index) { log.add(index); });
    queue.push_back(gate, 0);
    while (!at_gate) std::this_thread::yield();
    queue.push_back(logs, 30);
    queue.push_back(logs, 31);
    // Task 0 of a range runs on this thread, and waits until the worker has run all others: none is taken back.
    Action inner([&](std::uint32_t index) {
        if (index != 0) return log.add(10 + index);
        gate_open = true;
        log.wait_for(6);
    });
    Action outer([&](std::uint32_t index) {
        if (index != 0) return log.add(20 + index);
        queue.run_in_parallel(inner, 0, 3);
    });
    queue.run_in_parallel(outer, 0, 3);
    EXPECT_EQ(log.seen(), (std::vector<std::uint32_t>{11, 12, 21, 22, 30, 31}));
}

TEST(TaskQueue, AClosedQueueTakesWorkOrDropsWhatItHas) {
    std::atomic<unsigned> queued{0}, runs{0};
    std::string failure;
    {
        TaskQueue* open = nullptr;
        Action count([&](std::uint32_t) { ++runs; });
        Action pushes([&](std::uint32_t) { // runs while the destructor closes the queue
            failure = test::raised_by([&] {
                for (;; std::this_thread::sleep_for(std::chrono::milliseconds(1))) {
                    open->push_back(count, 0);
                    ++queued;
                }
            });
        });
        TaskQueue queue(1, no_start);
        open = &queue;
        queue.push_back(pushes, 0);
        while (queued < 3) std::this_thread::yield();
    }
    EXPECT_EQ(failure, "InvalidParametersException: Queue is closed.");
    EXPECT_EQ(runs, queued);
}

TEST(TaskQueue, ATaskThatWaitsForItsOwnQueueHangs) {
    TaskQueue queue(1, no_start);
    Log log;
    struct Nest final : BasicAction {
        Nest(TaskQueue& queue_, Log& log_) : queue(queue_), log(log_) {}
        void run(std::uint32_t depth) override {
            AsyncHandle first, second;
            if (depth > 0) {
                queue.dispatch(first, *this, depth - 1);
                queue.dispatch(second, *this, 0);
            }
            first.join(); // behind it, the handle's destructor waits for the second
            log.add(depth);
        }
        TaskQueue& queue;
        Log& log;
    } nest(queue, log);
    AsyncHandle handle;
    queue.dispatch(handle, nest, 2);
    ASSERT_TRUE(handle.join_for(60'000));
    EXPECT_EQ(log.seen(), (std::vector<std::uint32_t>{0, 1, 0, 2, 0}));
}

TEST(TaskQueue, DispatchedTasksRunBehindAndTellTheirFailure) {
    TaskQueue queue(2, no_start);
    AsyncHandle handle;
    std::atomic<int> sum{0};
    Action add([&](std::uint32_t index) { sum += static_cast<int>(index); });
    for (const std::uint32_t index : {3u, 4u, 5u}) queue.dispatch(handle, add, index); // each waits for the one before
    handle.join();
    EXPECT_EQ(sum, 12);
    Action fail([](std::uint32_t) { throw 7; });
    queue.dispatch(handle, fail, 0);
    EXPECT_THROW(handle.join(), int);
}

} // namespace
