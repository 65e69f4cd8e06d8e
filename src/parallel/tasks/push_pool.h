#pragma once

#include "parallel/tasks/parallel_framework.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace zvp {

/// A pool whose dispatcher hands a task straight to an idle worker.
///
/// A bounded pool runs a task on the dispatching thread when all workers are busy; an unbounded one gets another worker,
/// so that no task waits. Either way nesting can't deadlock. A dispatcher that comes to wait for a task which its worker
/// hasn't begun takes it back and runs it itself: a short task never waits for a thread to wake up. The exception of the
/// lowest index is thrown.
class PushPool final : public ParallelFramework {
public:
    struct Settings {
        std::uint32_t worker_threads = 0; // with the dispatcher's own; 0 is no limit
        bool randomize = true;            // begin the search for an idle worker at a random one
        std::uint32_t max_sequential_dispatch = 64;
    };

    /// `start` runs on each worker at its start, with the worker's number.
    PushPool(const Settings& settings, std::function<void(std::uint32_t)> start);
    ~PushPool() override;

    void run_in_parallel(BasicAction& action, std::uint32_t low, std::uint32_t high) override;
    void run_in_parallel(BasicAction& first, BasicAction& second) override;

    std::uint32_t worker_count() const { return count.load(); }

private:
    class Worker;
    class Record;

    Worker& worker(std::uint32_t number) const;
    std::uint32_t search_start(std::uint32_t workers) const;

    /// Hands the task to an idle worker, which it returns; null when all are busy.
    Worker* try_push(BasicAction& action, std::uint32_t index);

    /// Adds a worker unless there are `most`, or the system refuses a thread; tells whether it did.
    bool add_worker(std::uint32_t most);

    void grow_to_limit();

    const std::uint32_t limit; // workers beside the dispatcher; 0 is no limit
    const bool randomize;
    const std::uint32_t max_sequential_dispatch;
    const std::function<void(std::uint32_t)> start;

    // Workers never move: bucket 0 holds worker 0, bucket k the next 2^(k-1).
    static constexpr std::size_t bucket_count = 33;
    std::unique_ptr<Worker[]> buckets[bucket_count];
    std::mutex growth;
    std::atomic<std::uint32_t> count{0};
    std::atomic<std::uint32_t> mask{1};
};

} // namespace zvp
