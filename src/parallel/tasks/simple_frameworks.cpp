#include "parallel/tasks/simple_frameworks.h"

#include "app/console/console.h"
#include "parallel/tasks/exception_holder.h"
#include "parallel/tasks/range_dispatch.h"
#include "parallel/tasks/task_handle.h"
#include "parallel/topology/thread_placement.h"
#include "platform/threads.h"
#include "platform/work_queue.h"

#include <thread>

namespace zvp {

void NoFramework::run_in_parallel(BasicAction& action, std::uint32_t low, std::uint32_t high) {
    for (std::uint32_t i = low; i < high; ++i) action.run(i);
}

void NoFramework::run_in_parallel(BasicAction& first, BasicAction& second) {
    first.run(0);
    second.run(0);
}

AsyncFramework::AsyncFramework(bool async_only, std::uint32_t max_sequential_dispatch)
    : policy(async_only ? std::launch::async : std::launch::async | std::launch::deferred),
      limit(max_sequential_dispatch) {}

std::future<void> AsyncFramework::start(BasicAction& action, std::uint32_t index) const {
    return std::async(policy, [&action, index] {
        const platform::FaultStack fault_stack;
        action.run(index);
    });
}

namespace {

/// Waits for futures, whose tasks keep their exceptions in a holder of the caller.
void finish(std::future<void>& future) {
    if (!future.valid()) fatal_stop("An asynchronous task has no state.");
    future.get();
}

} // namespace

void AsyncFramework::run_in_parallel(BasicAction& action, std::uint32_t low, std::uint32_t high) {
    if (low >= high) return;
    if (high - low == 1) return action.run(low);
    if (high - low > std::max(limit, min_sequential_dispatch)) return fan_out(*this, limit, action, low, high);
    BasicActionE guarded(action);
    {
        RecordList<std::future<void>> futures(high - low - 1);
        for (std::uint32_t i = low; i < high - 1; ++i) futures.add(start(guarded, i));
        guarded.run(high - 1);
        for (std::uint32_t i = 0; i < futures.size(); ++i) finish(futures[i]);
    }
    guarded.exceptions.check();
}

void AsyncFramework::run_in_parallel(BasicAction& first, BasicAction& second) {
    PairAction pair(first, second);
    run_in_parallel(pair, 0, 2);
}

namespace {

/// A task on a thread of its own.
class SpawnRecord {
public:
    SpawnRecord(SpawnFramework&, BasicAction& action, std::uint32_t index)
        : guarded(action), thread([this, index] {
              const platform::FaultStack fault_stack;
              set_thread_priority(0);
              guarded.run(index);
          }) {}
    ~SpawnRecord() {
        if (thread.joinable()) thread.join();
        guarded.exceptions.mark_checked();
    }
    SpawnRecord(const SpawnRecord&) = delete;
    SpawnRecord& operator=(const SpawnRecord&) = delete;

    void finish() {
        thread.join();
        guarded.exceptions.check();
    }

private:
    /// A holder whose thread could not be started holds nothing.
    struct Guarded : BasicActionE {
        using BasicActionE::BasicActionE;
        ~Guarded() override { exceptions.mark_checked(); }
    };

    Guarded guarded;
    std::thread thread;
};

/// A task of the platform's work queue.
class WorkRecord {
public:
    WorkRecord(WorkQueueFramework&, BasicAction& action, std::uint32_t index_) : guarded(action), index(index_) {
        platform::submit_work(item, run_item, this);
    }
    ~WorkRecord() {
        platform::wait_for_work(item);
        guarded.exceptions.mark_checked();
    }
    WorkRecord(const WorkRecord&) = delete;
    WorkRecord& operator=(const WorkRecord&) = delete;

    void finish() {
        platform::wait_for_work(item);
        guarded.exceptions.check();
    }

private:
    static void run_item(void* record) {
        auto& self = *static_cast<WorkRecord*>(record);
        self.guarded.run(self.index);
    }

    BasicActionE guarded;
    const std::uint32_t index;
    platform::WorkItem item;
};

} // namespace

void SpawnFramework::run_in_parallel(BasicAction& action, std::uint32_t low, std::uint32_t high) {
    dispatch_range<SpawnRecord>(*this, limit, action, low, high);
}

void SpawnFramework::run_in_parallel(BasicAction& first, BasicAction& second) {
    dispatch_pair<SpawnRecord>(*this, first, second);
}

void WorkQueueFramework::run_in_parallel(BasicAction& action, std::uint32_t low, std::uint32_t high) {
    dispatch_range<WorkRecord>(*this, limit, action, low, high);
}

void WorkQueueFramework::run_in_parallel(BasicAction& first, BasicAction& second) {
    dispatch_pair<WorkRecord>(*this, first, second);
}

} // namespace zvp
