#pragma once
// Ranges of equal items, one for each task of a transform.

#include "multiply/hybrid/element_passes.h"

#include <algorithm>

namespace zvp {

/// Calls work(begin, end, scratch) for equal ranges of `count` items, one task each.
template <class Work>
class RangeAction final : public BasicAction {
public:
    RangeAction(const HybridJob& job_, std::uint64_t count_, const Work& work_)
        : job(job_), count(count_), work(work_) {}
    std::uint32_t tasks() const { return static_cast<std::uint32_t>(std::min<std::uint64_t>(job.size.tasks, count)); }
    std::uint64_t boundary(std::uint32_t index) const { return count * index / tasks(); }
    TaskScratch scratch(std::uint32_t index) const { return {job.M + index * job.size.ring_scratch_bytes}; }
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
    const std::uint32_t tasks = action.tasks();
    if (tasks > 1 && job.ctx.framework) {
        job.ctx.framework->run_in_parallel(action, 0, tasks);
    } else {
        for (std::uint32_t i = 0; i < tasks; ++i) action.run(i);
    }
    return action;
}

} // namespace zvp
