#pragma once
// The frameworks without a pool of their own: none, one standard asynchronous call a task, one thread a task.

#include "parallel/tasks/parallel_framework.h"

#include <cstdint>
#include <future>

namespace zvp {

/// A loop on the caller's thread; exceptions pass straight through.
class NoFramework final : public ParallelFramework {
public:
    void run_in_parallel(BasicAction& action, std::uint32_t low, std::uint32_t high) override;
    void run_in_parallel(BasicAction& first, BasicAction& second) override;
};

/// One std::async() a task. The first exception of a call, in time, is thrown when all its tasks have ended.
class AsyncFramework final : public ParallelFramework {
public:
    AsyncFramework(bool async_only, std::uint32_t max_sequential_dispatch);

    void run_in_parallel(BasicAction& action, std::uint32_t low, std::uint32_t high) override;
    void run_in_parallel(BasicAction& first, BasicAction& second) override;

private:
    std::future<void> start(BasicAction& action, std::uint32_t index) const;

    const std::launch policy;
    const std::uint32_t limit;
};

/// One new thread a task, at normal priority. The exception of the lowest index is thrown; a thread that can't be
/// created throws std::system_error when those before it have ended.
class SpawnFramework final : public ParallelFramework {
public:
    explicit SpawnFramework(std::uint32_t max_sequential_dispatch) : limit(max_sequential_dispatch) {}

    void run_in_parallel(BasicAction& action, std::uint32_t low, std::uint32_t high) override;
    void run_in_parallel(BasicAction& first, BasicAction& second) override;

private:
    const std::uint32_t limit;
};

/// The process-wide work queue of the platform. The exception of the lowest index is thrown.
class WorkQueueFramework final : public ParallelFramework {
public:
    explicit WorkQueueFramework(std::uint32_t max_sequential_dispatch) : limit(max_sequential_dispatch) {}

    void run_in_parallel(BasicAction& action, std::uint32_t low, std::uint32_t high) override;
    void run_in_parallel(BasicAction& first, BasicAction& second) override;

private:
    const std::uint32_t limit;
};

} // namespace zvp
