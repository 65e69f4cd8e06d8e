#pragma once

#include "parallel/tasks/parallel_framework.h"
#include "parallel/tasks/range_dispatch.h"
#include "parallel/tasks/task_handle.h"

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

namespace zvp {

/// One ordered queue, served by workers that are started when work waits for them.
///
/// Work of run_in_parallel() goes in front of all that is queued, so that newer ranges are served first and nested work
/// runs depth first; dispatched work goes behind. A caller takes back those of its tasks that nobody has begun and runs
/// them itself, so nesting can't deadlock with any number of workers. The exception of the lowest index is thrown.
class TaskQueue final : public ParallelFramework {
public:
    /// `max_threads` 0 is no limit. `start` runs on each worker at its start, with the worker's number.
    TaskQueue(std::uint32_t max_threads, std::function<void(std::uint32_t)> start);

    /// Serves what is queued, then ends the workers.
    ~TaskQueue() override;

    void run_in_parallel(BasicAction& action, std::uint32_t low, std::uint32_t high) override;
    void run_in_parallel(BasicAction& first, BasicAction& second) override;

    /// Runs action.run(index) on a worker; the action lives until the handle has waited. A task of this queue that waits
    /// for a handle runs the handle's task itself if nobody has begun it, so that even a queue of one worker can't
    /// deadlock; wait_for() and join_for() only wait. Fails like push_back(), and with std::system_error if the system
    /// refuses the first worker.
    void dispatch(AsyncHandle& handle, BasicAction& action, std::uint32_t index);

    /// Queues action.run(index) behind everything. The action must not throw; its owner learns of its end by itself.
    /// Raises InvalidParametersException "Queue is closed." and LimitExceededException when the IDs are used up.
    void push_back(BasicAction& action, std::uint32_t index);

private:
    struct Entry {
        BasicAction* action;
        std::uint32_t index;
    };
    struct QueuedTask;    // a task of run_in_parallel() with its ID
    class DispatchedTask; // a task of dispatch(), owned by its handle

    std::int64_t first_id_in_front(std::uint32_t count) const;
    void wake_or_start(std::uint32_t count);
    void start_worker();
    void work(std::uint32_t number);
    std::int64_t queue_behind(BasicAction& action, std::uint32_t index);
    bool take_back(std::int64_t id, const BasicAction& action);
    void run_unbegun(RecordList<QueuedTask>& tasks);

    const std::uint32_t max_threads;
    const std::function<void(std::uint32_t)> start;

    std::mutex mutex; // guards what follows
    std::condition_variable condition;
    bool closed = false;
    std::uint32_t idle = 0;   // workers in the wait
    std::uint32_t waking = 0; // of them, those that were signalled
    std::map<std::int64_t, Entry> queue;
    std::vector<std::thread> threads;
};

} // namespace zvp
