#include "parallel/tasks/task_handle.h"

#include "platform/threads.h"

#include <chrono>
#include <thread>

namespace zvp {

namespace {

using Clock = std::chrono::steady_clock;

/// The time so many milliseconds from now; the end of all time if the clock can't tell it.
Clock::time_point deadline_in(std::uint64_t milliseconds) {
    const Clock::time_point now = Clock::now();
    const auto most = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::time_point::max() - now);
    if (milliseconds >= static_cast<std::uint64_t>(most.count())) return Clock::time_point::max();
    return now + std::chrono::milliseconds(milliseconds);
}

} // namespace

void BasicActionE::run(std::uint32_t index) {
    try {
        action.run(index);
    } catch (...) {
        exceptions.capture_current();
    }
}

WaitableAction::~WaitableAction() {
    wait();
    while (!finished.load(std::memory_order_acquire)) std::this_thread::yield();
    exceptions.mark_checked(); // whoever wanted the exception has joined; the others drop it
}

void WaitableAction::run(std::uint32_t index) {
    BasicActionE::run(index);
    signal();
}

void WaitableAction::cancel() { signal(); }

void WaitableAction::signal() {
    {
        const std::lock_guard lock(mutex);
        signalled.store(true, std::memory_order_release);
        condition.notify_all();
    }
    finished.store(true, std::memory_order_release);
}

void WaitableAction::wait() {
    for (unsigned i = 0; i < platform::spin_rounds; ++i) {
        if (signalled.load(std::memory_order_acquire)) return;
        platform::spin_pause();
    }
    std::unique_lock lock(mutex);
    condition.wait(lock, [this] { return signalled.load(); });
}

void WaitableAction::join() {
    wait();
    exceptions.check();
}

bool WaitableAction::wait_for(std::uint64_t milliseconds) {
    std::unique_lock lock(mutex);
    return condition.wait_until(lock, deadline_in(milliseconds), [this] { return signalled.load(); });
}

bool WaitableAction::join_for(std::uint64_t milliseconds) {
    if (!wait_for(milliseconds)) return false;
    exceptions.check();
    return true;
}

std::future<void>& FutureTaskHandle::checked() {
    if (!future.valid()) throw std::future_error(std::future_errc::no_state);
    return future;
}

bool FutureTaskHandle::wait_for(std::uint64_t milliseconds) {
    return checked().wait_until(deadline_in(milliseconds)) == std::future_status::ready;
}

bool FutureTaskHandle::join_for(std::uint64_t milliseconds) {
    if (!wait_for(milliseconds)) return false;
    future.get();
    return true;
}

void AsyncHandle::assign(std::unique_ptr<BasicTaskHandle> fresh) {
    wait();
    task = std::move(fresh);
}

void AsyncHandle::wait() {
    if (task) task->wait();
}

void AsyncHandle::join() {
    const std::unique_ptr<BasicTaskHandle> joined = std::move(task);
    if (joined) joined->join();
}

bool AsyncHandle::wait_for(std::uint64_t milliseconds) { return !task || task->wait_for(milliseconds); }

bool AsyncHandle::join_for(std::uint64_t milliseconds) {
    if (!wait_for(milliseconds)) return false;
    join();
    return true;
}

void dispatch_async(AsyncHandle& handle, BasicAction& action, std::uint32_t index) {
    handle.assign(nullptr); // the old task ends before the new one begins
    handle.assign(std::make_unique<FutureTaskHandle>(std::async(std::launch::async, [&action, index] {
        const platform::FaultStack fault_stack;
        action.run(index);
    })));
}

} // namespace zvp
