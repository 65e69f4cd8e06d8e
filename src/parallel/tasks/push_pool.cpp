#include "parallel/tasks/push_pool.h"

#include "app/console/console.h"
#include "parallel/tasks/range_dispatch.h"
#include "parallel/tasks/task_handle.h"
#include "platform/clock.h"
#include "platform/threads.h"

#include <bit>
#include <condition_variable>
#include <exception>

namespace zvp {

namespace {

/// An action that is never run: marks a worker that is being given a task, or runs one.
struct Mark final : BasicAction {
    void run(std::uint32_t) override {}
};
Mark reserved_mark, running_mark;

} // namespace

/// One thread of the pool. `task` is null while it is idle, then reserved, the task, and running, in this order; only a
/// dispatcher leaves null, only the worker enters running, and whichever of worker and dispatcher replaces the task
/// runs it.
class PushPool::Worker {
public:
    void launch(std::uint32_t number, const std::function<void(std::uint32_t)>& start_function) {
        thread = std::thread([this, number, &start_function] {
            const platform::FaultStack fault_stack;
            try {
                start_function(number);
                work();
            } catch (...) { // the pool's own tasks keep their exceptions
                fatal_stop("PushPoolWorker: An exception was thrown from a task.");
            }
        });
    }

    bool try_give(BasicAction& action, std::uint32_t task_index) {
        BasicAction* idle = nullptr;
        if (task.load(std::memory_order_relaxed) != nullptr) return false;
        if (!task.compare_exchange_strong(idle, &reserved_mark)) return false;
        index = task_index;
        task.store(&action); // seq_cst, with the worker's store of `sleeping`: one of the two sees the other
        if (sleeping.load()) {
            const std::lock_guard lock(mutex);
            condition.notify_one();
        }
        return true;
    }

    /// Takes back a task that the worker hasn't begun.
    bool take_back(BasicAction& action) {
        BasicAction* expected = &action;
        return task.compare_exchange_strong(expected, nullptr);
    }

    void end() {
        {
            const std::lock_guard lock(mutex);
            terminate = true;
            condition.notify_one();
        }
        thread.join();
    }

private:
    /// Runs the task if there is one.
    bool run_task() {
        BasicAction* given = task.load();
        if (given == nullptr || given == &reserved_mark) return false;
        if (!task.compare_exchange_strong(given, &running_mark)) return false; // taken back
        given->run(index);
        task.store(nullptr, std::memory_order_release);
        return true;
    }

    void work() {
        for (;;) {
            for (unsigned i = 0; i < platform::spin_rounds; ++i) {
                if (run_task()) i = 0;
                platform::spin_pause();
            }
            std::unique_lock lock(mutex);
            sleeping.store(true);
            condition.wait(lock, [this] { return task.load() != nullptr || terminate; });
            sleeping.store(false);
            if (terminate && task.load() == nullptr) return;
        }
    }

    std::atomic<BasicAction*> task{nullptr};
    std::uint32_t index = 0; // belongs to whoever owns the state of `task`
    std::atomic<bool> sleeping{false};
    std::mutex mutex;
    std::condition_variable condition;
    bool terminate = false;
    std::thread thread;
};

/// A task that a worker runs, or whoever waits for it.
class PushPool::Record {
public:
    Record(PushPool& pool, BasicAction& action, std::uint32_t index_) : task(action), index(index_) {
        worker = pool.try_push(task, index);
        if (pool.limit == 0)
            while (!worker && pool.add_worker(~0u)) worker = pool.try_push(task, index);
        if (!worker) task.run(index);
    }
    ~Record() { run_if_not_begun(); }
    Record(const Record&) = delete;
    Record& operator=(const Record&) = delete;

    void finish() {
        run_if_not_begun();
        task.join();
    }

private:
    void run_if_not_begun() {
        if (worker && worker->take_back(task)) task.run(index);
        worker = nullptr;
    }

    WaitableAction task;
    const std::uint32_t index;
    Worker* worker = nullptr;
};

PushPool::PushPool(const Settings& settings, std::function<void(std::uint32_t)> start_)
    : limit(settings.worker_threads == 0 ? 0 : settings.worker_threads - 1),
      randomize(settings.randomize),
      max_sequential_dispatch(settings.max_sequential_dispatch),
      start(std::move(start_)) {
    const auto cores = static_cast<std::uint32_t>(platform::usable_cores().size());
    const std::uint32_t first_workers = settings.worker_threads == 0 ? 2 * cores - 1 : limit;
    while (count < first_workers && add_worker(first_workers)) {
    }
}

PushPool::~PushPool() {
    for (std::uint32_t i = count; i-- > 0;) worker(i).end();
}

PushPool::Worker& PushPool::worker(std::uint32_t number) const {
    const auto bucket = static_cast<std::size_t>(std::bit_width(number));
    return buckets[bucket][bucket == 0 ? 0 : number - (1u << (bucket - 1))];
}

bool PushPool::add_worker(std::uint32_t most) {
    const std::lock_guard lock(growth);
    const std::uint32_t number = count;
    if (number >= most) return false;
    const auto bucket = static_cast<std::size_t>(std::bit_width(number));
    try {
        if (!buckets[bucket])
            buckets[bucket] = std::make_unique<Worker[]>(bucket == 0 ? 1 : std::size_t{1} << (bucket - 1));
        worker(number).launch(number, start);
    } catch (const std::exception&) { // no thread, or no memory for one
        return false;
    }
    if (mask == number) mask = 2 * mask + 1;
    count.store(number + 1, std::memory_order_release);
    return true;
}

void PushPool::grow_to_limit() {
    while (count.load(std::memory_order_relaxed) < limit && add_worker(limit)) {
    }
}

std::uint32_t PushPool::search_start(std::uint32_t workers) const {
    if (!randomize) return 0;
    const auto random = static_cast<std::uint32_t>(platform::time_stamp_counter()) & mask.load();
    return random < workers ? random : (random - workers) % workers;
}

PushPool::Worker* PushPool::try_push(BasicAction& action, std::uint32_t index) {
    const std::uint32_t workers = count.load(std::memory_order_acquire);
    if (workers == 0) return nullptr;
    const std::uint32_t first = search_start(workers);
    for (std::uint32_t i = 0; i < workers; ++i) {
        Worker& candidate = worker(first + i < workers ? first + i : first + i - workers);
        if (candidate.try_give(action, index)) return &candidate;
    }
    return nullptr;
}

void PushPool::run_in_parallel(BasicAction& action, std::uint32_t low, std::uint32_t high) {
    dispatch_range<Record>(*this, max_sequential_dispatch, action, low, high);
}

void PushPool::run_in_parallel(BasicAction& first, BasicAction& second) {
    grow_to_limit();
    dispatch_pair<Record>(*this, first, second);
}

} // namespace zvp
