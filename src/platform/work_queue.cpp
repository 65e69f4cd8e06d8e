#include "platform/work_queue.h"

#include "platform/threads.h"

#include <condition_variable>
#include <mutex>
#include <thread>

namespace zvp::platform {

/// Newest work first, so that nested work is done before what waits for it.
class WorkQueue {
public:
    void submit(WorkItem& item) {
        std::unique_lock lock(mutex);
        item.state.store(WorkItem::queued, std::memory_order_relaxed);
        push(item);
        // A thread that was notified stays idle until it gets the mutex, so that the queue's length decides.
        if (queued_items > idle_threads && threads < usable_cores().size()) start_thread();
        const bool wakes = idle_threads > 0;
        lock.unlock();
        if (wakes) condition.notify_one();
    }

    void wait(WorkItem& item) {
        if (item.state.load(std::memory_order_relaxed) == WorkItem::idle) return;
        for (unsigned i = 0; i < spin_rounds; ++i) {
            if (item.state.load(std::memory_order_acquire) == WorkItem::done) return release(item);
            if (item.state.load(std::memory_order_relaxed) == WorkItem::queued) break;
            spin_pause();
        }
        {
            std::unique_lock lock(mutex);
            if (item.state.load(std::memory_order_relaxed) == WorkItem::queued) {
                remove(item);
                lock.unlock();
                item.callback(item.argument);
                return release(item);
            }
            finished.wait(lock, [&] { return item.state.load(std::memory_order_acquire) == WorkItem::done; });
        }
        release(item);
    }

    void set(WorkItem& item, void (*callback)(void*), void* argument) {
        item.callback = callback;
        item.argument = argument;
    }

private:
    static void release(WorkItem& item) { item.state.store(WorkItem::idle, std::memory_order_relaxed); }

    void push(WorkItem& item) {
        item.previous = nullptr;
        item.next = newest;
        if (newest) newest->previous = &item;
        newest = &item;
        ++queued_items;
    }

    void remove(WorkItem& item) {
        (item.previous ? item.previous->next : newest) = item.next;
        if (item.next) item.next->previous = item.previous;
        --queued_items;
    }

    void start_thread() {
        try {
            std::thread([this] { work(); }).detach();
            ++threads;
        } catch (...) {
            // No thread, or no memory for one: whoever waits for the work runs it.
        }
    }

    void work() {
        const FaultStack fault_stack;
        std::unique_lock lock(mutex);
        for (;;) {
            while (!newest) {
                ++idle_threads;
                condition.wait(lock);
                --idle_threads;
            }
            WorkItem& item = *newest;
            remove(item);
            item.state.store(WorkItem::running, std::memory_order_relaxed);
            lock.unlock();
            item.callback(item.argument);
            lock.lock();
            item.state.store(WorkItem::done, std::memory_order_release); // the item may be gone behind this
            finished.notify_all();
        }
    }

    std::mutex mutex;
    std::condition_variable condition; // work came
    std::condition_variable finished;  // some work is done
    WorkItem* newest = nullptr;
    std::size_t threads = 0;
    std::size_t idle_threads = 0;
    std::size_t queued_items = 0;
};

namespace {

/// Never destroyed: its threads run until the process ends.
WorkQueue& work_queue() {
    static WorkQueue& queue = *new WorkQueue;
    return queue;
}

} // namespace

void submit_work(WorkItem& item, void (*callback)(void*), void* argument) {
    work_queue().set(item, callback, argument);
    work_queue().submit(item);
}

void wait_for_work(WorkItem& item) { work_queue().wait(item); }

} // namespace zvp::platform
