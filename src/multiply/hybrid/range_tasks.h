#pragma once
// How the items of a pass fall to the tasks of a transform, each of which has a scratch of its own.

#include "multiply/hybrid/element_passes.h"

#include <algorithm>
#include <array>
#include <atomic>

namespace zvp {

/// As many tasks as have something to do.
inline std::uint32_t tasks_for(const HybridJob& job, std::uint64_t count) {
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(job.size.tasks, count));
}

inline TaskScratch scratch_of(const HybridJob& job, std::uint32_t task) {
    return {job.M + task * job.size.ring_scratch_bytes};
}

inline void run_tasks(const HybridJob& job, BasicAction& action, std::uint32_t tasks) {
    if (tasks > 1 && job.ctx.framework) return job.ctx.framework->run_in_parallel(action, 0, tasks);
    for (std::uint32_t i = 0; i < tasks; ++i) action.run(i);
}

/// Calls work(begin, end, scratch) for equal ranges of `count` items, one task each.
template <class Work>
class RangeAction final : public BasicAction {
public:
    RangeAction(const HybridJob& job_, std::uint64_t count_, const Work& work_)
        : job(job_), count(count_), work(work_) {}
    std::uint32_t tasks() const { return tasks_for(job, count); }
    std::uint64_t boundary(std::uint32_t index) const { return count * index / tasks(); }
    TaskScratch scratch(std::uint32_t index) const { return scratch_of(job, index); }
    void run(std::uint32_t index) override { work(boundary(index), boundary(index + 1), scratch(index)); }

private:
    const HybridJob& job;
    std::uint64_t count;
    const Work& work;
};

/// Runs all ranges. Returns the action, which knows the ranges and what lies in each task's scratch.
template <class Work>
RangeAction<Work> run_ranges(const HybridJob& job, std::uint64_t count, const Work& work) {
    RangeAction<Work> action(job, count, work);
    run_tasks(job, action, action.tasks());
    return action;
}

/// Items of an equal range each, from which their task takes the first and others the last.
class ItemRanges {
public:
    /// Less than 2^32 items.
    ItemRanges(std::uint64_t count, std::uint32_t tasks) : ranges(std::min<std::uint32_t>(tasks, most_ranges)) {
        for (std::uint64_t i = 0; i < ranges; ++i) left[i] = pack(count * i / ranges, count * (i + 1) / ranges);
    }

    /// The next item of a task, or false.
    bool take(std::uint32_t task, std::uint64_t& item) {
        if (take_from(task % ranges, true, item)) return true;
        for (std::uint32_t i = 1; i < ranges; ++i)
            if (take_from((task + i) % ranges, false, item)) return true;
        return false;
    }

private:
    static constexpr std::uint32_t most_ranges = 64;

    static std::uint64_t pack(std::uint64_t begin, std::uint64_t end) { return begin << 32 | end; }

    bool take_from(std::uint32_t range, bool first, std::uint64_t& item) {
        std::uint64_t seen = left[range].load(std::memory_order_relaxed), begin, end;
        do {
            begin = seen >> 32, end = seen & 0xFFFF'FFFF;
            if (begin == end) return false;
            item = first ? begin++ : --end;
        } while (!left[range].compare_exchange_weak(seen, pack(begin, end), std::memory_order_relaxed));
        return true;
    }

    std::uint32_t ranges;
    std::array<std::atomic<std::uint64_t>, most_ranges> left;
};

/// Calls work(take, scratch) once in each task, where take(item) gives the next of `count` items, or false. A task that is
/// done with its own takes from others: a core that is slowed down, by another program or by its heat, doesn't hold them
/// up.
template <class Work>
class TakeAction final : public BasicAction {
public:
    TakeAction(const HybridJob& job_, std::uint64_t count, const Work& work_)
        : job(job_), items(count, tasks_for(job_, count)), work(work_) {}
    void run(std::uint32_t index) override {
        work([&](std::uint64_t& item) { return items.take(index, item); }, scratch_of(job, index));
    }

private:
    const HybridJob& job;
    ItemRanges items;
    const Work& work;
};

template <class Work>
void run_takers(const HybridJob& job, std::uint64_t count, const Work& work) {
    TakeAction<Work> action(job, count, work);
    run_tasks(job, action, tasks_for(job, count));
}

/// Calls work(item, scratch) for each of `count` items, likewise.
template <class Work>
void run_items(const HybridJob& job, std::uint64_t count, const Work& work) {
    run_takers(job, count, [&](auto&& take, TaskScratch scratch) {
        for (std::uint64_t item; take(item);) work(item, scratch);
    });
}

} // namespace zvp
