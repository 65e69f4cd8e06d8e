#include "parallel/tasks/range_dispatch.h"

#include <bit>

namespace zvp {

namespace {

/// Group i of a fan-out: runs its block of tasks by the framework.
class RangeAction final : public BasicAction {
public:
    RangeAction(ParallelFramework& framework_, BasicAction& action_, std::uint32_t low_, std::uint32_t high_,
                std::uint32_t block_)
        : framework(framework_), action(action_), low(low_), high(high_), block(block_) {}

    void run(std::uint32_t index) override {
        const std::uint64_t start = std::min<std::uint64_t>(low + std::uint64_t{index} * block, high);
        const std::uint64_t end = std::min<std::uint64_t>(start + block, high);
        if (start != end)
            framework.run_in_parallel(action, static_cast<std::uint32_t>(start), static_cast<std::uint32_t>(end));
    }

private:
    ParallelFramework& framework;
    BasicAction& action;
    const std::uint32_t low, high, block;
};

} // namespace

FanOut fan_out_groups(std::uint32_t tasks, std::uint32_t limit) {
    const std::uint32_t last = tasks - 1;
    const auto half_bits = static_cast<unsigned>((std::bit_width(last) + 1) / 2);
    const std::uint64_t groups = std::uint64_t{1} << half_bits;
    if (groups > limit) return {limit, last / limit + 1};
    return {static_cast<std::uint32_t>(groups), (last >> half_bits) + 1};
}

void fan_out(ParallelFramework& framework, std::uint32_t limit, BasicAction& action, std::uint32_t low,
             std::uint32_t high) {
    limit = std::max(limit, min_sequential_dispatch);
    if (high - low <= limit) return framework.run_in_parallel(action, low, high);
    const FanOut fan = fan_out_groups(high - low, limit);
    RangeAction groups(framework, action, low, high, fan.block);
    framework.run_in_parallel(groups, 0, fan.groups);
}

} // namespace zvp
