#pragma once
// Single tasks that run beside their caller.

#include "parallel/tasks/exception_holder.h"
#include "parallel/tasks/parallel_framework.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <future>
#include <memory>
#include <mutex>

namespace zvp {

/// Runs another action and keeps its exceptions instead of letting them out.
class BasicActionE : public BasicAction {
public:
    explicit BasicActionE(BasicAction& action_) : action(action_) {}

    void run(std::uint32_t index) override;

    ExceptionHolder exceptions;

private:
    BasicAction& action;
};

/// The caller's view of one task.
class BasicTaskHandle {
public:
    virtual ~BasicTaskHandle() = default;

    /// Blocks until the task is done.
    virtual void wait() = 0;

    /// wait(), then throws the task's exception, if any.
    virtual void join() = 0;

    /// Waits at most so long; tells whether the task is done.
    virtual bool wait_for(std::uint64_t milliseconds) = 0;

    /// wait_for(), and throws the task's exception if it is done.
    virtual bool join_for(std::uint64_t milliseconds) = 0;
};

/// An action that tells when it has run. Its destructor waits for the run, so it must be run, or cancelled, exactly once.
class WaitableAction final : public BasicActionE, public BasicTaskHandle {
public:
    explicit WaitableAction(BasicAction& action_) : BasicActionE(action_) {}
    ~WaitableAction() override;

    void run(std::uint32_t index) override;

    /// Instead of a run that never comes.
    void cancel();

    void wait() override;
    void join() override;
    bool wait_for(std::uint64_t milliseconds) override;
    bool join_for(std::uint64_t milliseconds) override;

private:
    void signal();

    std::mutex mutex;
    std::condition_variable condition;
    std::atomic<bool> signalled{false}; // written under the mutex
    std::atomic<bool> finished{false};  // the running thread's last touch of this object
};

/// A task behind a standard future.
class FutureTaskHandle final : public BasicTaskHandle {
public:
    explicit FutureTaskHandle(std::future<void> future_) : future(std::move(future_)) {}

    void wait() override { checked().wait(); }
    void join() override { checked().get(); }
    bool wait_for(std::uint64_t milliseconds) override;
    bool join_for(std::uint64_t milliseconds) override;

private:
    /// The future; one without a state raises the standard error for that.
    std::future<void>& checked();

    std::future<void> future;
};

/// Holds at most one task. Assigning another waits for the old one first.
class AsyncHandle {
public:
    AsyncHandle() = default;
    ~AsyncHandle() { assign(nullptr); }
    AsyncHandle(const AsyncHandle&) = delete;
    AsyncHandle& operator=(const AsyncHandle&) = delete;

    void assign(std::unique_ptr<BasicTaskHandle> fresh);

    /// Without a task these return at once; join() and a successful join_for() let go of the task.
    void wait();
    void join();
    bool wait_for(std::uint64_t milliseconds);
    bool join_for(std::uint64_t milliseconds);

private:
    std::unique_ptr<BasicTaskHandle> task;
};

/// Starts action.run(index) on a thread of its own. The action lives until the handle has waited.
void dispatch_async(AsyncHandle& handle, BasicAction& action, std::uint32_t index);

} // namespace zvp
