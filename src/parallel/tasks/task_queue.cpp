#include "parallel/tasks/task_queue.h"

#include "app/failure/child_thread.h"
#include "app/failure/exceptions.h"
#include "platform/threads.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <system_error>

namespace zvp {

struct TaskQueue::QueuedTask {
    QueuedTask(BasicAction& action, std::int64_t id_, std::uint32_t index_) : task(action), id(id_), index(index_) {}

    WaitableAction task;
    const std::int64_t id;
    const std::uint32_t index;
};

namespace {

/// The queue whose worker the calling thread is.
thread_local const TaskQueue* served_queue = nullptr;

} // namespace

class TaskQueue::DispatchedTask final : public BasicTaskHandle {
public:
    DispatchedTask(TaskQueue& queue_, BasicAction& action, std::uint32_t index_)
        : queue(queue_), index(index_), task(action) {
        try {
            id = queue.queue_behind(task, index);
        } catch (...) {
            task.cancel();
            throw;
        }
    }

    void wait() override {
        run_if_unbegun();
        task.wait();
    }
    void join() override {
        run_if_unbegun();
        task.join();
    }
    bool wait_for(std::uint64_t milliseconds) override { return task.wait_for(milliseconds); }
    bool join_for(std::uint64_t milliseconds) override { return task.join_for(milliseconds); }

private:
    /// The queue may be gone, but not while one of its workers asks.
    void run_if_unbegun() {
        if (served_queue == &queue && queue.take_back(id, task)) task.run(index);
    }

    TaskQueue& queue;
    const std::uint32_t index;
    std::int64_t id = 0;
    WaitableAction task;
};

TaskQueue::TaskQueue(std::uint32_t max_threads_, std::function<void(std::uint32_t)> start_)
    : max_threads(max_threads_ == 0 ? std::numeric_limits<std::uint32_t>::max() : max_threads_),
      start(std::move(start_)) {}

TaskQueue::~TaskQueue() {
    {
        const std::lock_guard lock(mutex);
        closed = true;
    }
    condition.notify_all();
    for (std::thread& thread : threads) thread.join();
}

std::int64_t TaskQueue::first_id_in_front(std::uint32_t count) const {
    if (queue.empty()) return 0;
    const std::int64_t lowest = queue.begin()->first;
    if (lowest < std::numeric_limits<std::int64_t>::min() + static_cast<std::int64_t>(count))
        throw LimitExceededException("TaskQueue::push_back()", "ID limit exceeded.",
                                     LimitExceededException::unknown_limit, count);
    return lowest - static_cast<std::int64_t>(count);
}

/// Wakes idle workers for `count` tasks, and starts new ones for the rest as far as the limit allows.
void TaskQueue::wake_or_start(std::uint32_t count) {
    const std::uint32_t woken = std::min(idle - waking, count);
    waking += woken;
    for (std::uint32_t i = 0; i < woken; ++i) condition.notify_one();
    for (std::uint32_t i = woken; i < count && threads.size() < max_threads && !closed; ++i) start_worker();
}

void TaskQueue::start_worker() {
    const auto number = static_cast<std::uint32_t>(threads.size());
    threads.emplace_back([this, number] { run_child_thread([&] { work(number); }); });
}

void TaskQueue::work(std::uint32_t number) {
    const platform::FaultStack fault_stack;
    served_queue = this;
    start(number);
    std::unique_lock lock(mutex);
    for (;;) {
        while (queue.empty()) {
            if (closed) return;
            ++idle;
            condition.wait(lock);
            --idle;
            if (waking > 0) --waking;
        }
        const Entry entry = queue.begin()->second;
        queue.erase(queue.begin());
        lock.unlock();
        entry.action->run(entry.index);
        lock.lock();
    }
}

bool TaskQueue::take_back(std::int64_t id, const BasicAction& action) {
    const std::lock_guard lock(mutex);
    const auto found = queue.find(id);
    if (found == queue.end() || found->second.action != &action) return false;
    queue.erase(found);
    return true;
}

void TaskQueue::run_unbegun(RecordList<QueuedTask>& tasks) {
    for (std::uint32_t i = 0; i < tasks.size(); ++i)
        if (take_back(tasks[i].id, tasks[i].task)) tasks[i].task.run(tasks[i].index);
}

namespace {

/// At the end of a call that throws, what is still queued must run or leave the queue before its records go.
template <class Function>
class AtExit {
public:
    explicit AtExit(Function function_) : function(std::move(function_)) {}
    ~AtExit() { function(); }
    AtExit(const AtExit&) = delete;
    AtExit& operator=(const AtExit&) = delete;

private:
    Function function;
};

} // namespace

void TaskQueue::run_in_parallel(BasicAction& action, std::uint32_t low, std::uint32_t high) {
    if (low >= high) return;
    if (high - low == 1) return action.run(low);
    const std::uint32_t count = high - low - 1;
    RecordList<QueuedTask> tasks(count);
    bool taken_back = false;
    const AtExit take_back_what_is_left([&] {
        if (!taken_back) run_unbegun(tasks);
    });
    {
        const std::lock_guard lock(mutex);
        const std::int64_t first = first_id_in_front(count);
        for (std::uint32_t i = 0; i < count; ++i) {
            QueuedTask& task = tasks.add(action, first + i, low + 1 + i);
            try {
                queue.emplace(task.id, Entry{&task.task, task.index});
            } catch (...) {
                task.task.cancel();
                throw;
            }
        }
        try {
            wake_or_start(count);
        } catch (...) {
            // No thread, or no memory for one: the caller runs what nobody else does.
        }
    }
    action.run(low);
    run_unbegun(tasks);
    taken_back = true;
    for (std::uint32_t i = 0; i < tasks.size(); ++i) tasks[i].task.join();
}

void TaskQueue::run_in_parallel(BasicAction& first, BasicAction& second) {
    PairAction pair(first, second);
    run_in_parallel(pair, 0, 2);
}

void TaskQueue::dispatch(AsyncHandle& handle, BasicAction& action, std::uint32_t index) {
    handle.assign(nullptr); // the old task ends before the new one begins
    handle.assign(std::make_unique<DispatchedTask>(*this, action, index));
}

void TaskQueue::push_back(BasicAction& action, std::uint32_t index) { queue_behind(action, index); }

std::int64_t TaskQueue::queue_behind(BasicAction& action, std::uint32_t index) {
    const std::lock_guard lock(mutex);
    if (closed) throw InvalidParametersException("TaskQueue::push_back()", "Queue is closed.");
    std::int64_t id = 0;
    if (!queue.empty()) {
        const std::int64_t highest = queue.rbegin()->first;
        if (highest == std::numeric_limits<std::int64_t>::max())
            throw LimitExceededException("TaskQueue::dispatch()", "ID limit exceeded.",
                                         LimitExceededException::unknown_limit, 1);
        id = highest + 1;
    }
    queue.emplace(id, Entry{&action, index});
    try {
        wake_or_start(1);
    } catch (...) {
        if (!threads.empty()) return id; // those that run serve it
        queue.erase(id);
        throw;
    }
    return id;
}

} // namespace zvp
