#pragma once
// A work queue of the whole process: its threads are started when first needed and end with the process.

#include <atomic>

namespace zvp::platform {

/// One piece of work, owned by whoever submits it and kept in place until it has waited for it.
class WorkItem {
public:
    WorkItem() = default;
    WorkItem(const WorkItem&) = delete;
    WorkItem& operator=(const WorkItem&) = delete;

private:
    friend class WorkQueue;

    enum State : int { idle, queued, running, done };

    void (*callback)(void*) = nullptr;
    void* argument = nullptr;
    WorkItem* previous = nullptr;
    WorkItem* next = nullptr;
    std::atomic<int> state{idle};
};

/// Queues callback(argument), which must not throw.
void submit_work(WorkItem& item, void (*callback)(void*), void* argument);

/// Returns when the work has run, and lets go of the item. Work that no thread has begun is run here: so a thread that
/// waits for its own work never waits for a free thread, and nested use can't deadlock. An item that was never
/// submitted returns at once.
void wait_for_work(WorkItem& item);

} // namespace zvp::platform
