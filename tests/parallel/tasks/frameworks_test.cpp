#include "app/failure/exceptions.h"
#include "parallel/tasks/action.h"
#include "parallel/tasks/framework_config.h"
#include "parallel/tasks/push_pool.h"
#include "parallel/tasks/range_dispatch.h"
#include "parallel/tasks/simple_frameworks.h"
#include "parallel/tasks/task_queue.h"
#include "platform/threads.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <numeric>
#include <thread>
#include <vector>

namespace {

using namespace zvp;

using test::Action;

const auto no_start = [](std::uint32_t) {};

struct FrameworkCase {
    std::string name;
    std::function<std::unique_ptr<ParallelFramework>()> make;
    bool first_in_time; // the exception rule: first captured, else lowest index
    bool thread_per_task;
    std::uint32_t flat_limit = 64; // longer ranges fan out, and a group's own last task counts as the caller's
};

std::vector<FrameworkCase> framework_cases() {
    std::vector<FrameworkCase> cases;
    for (const std::string& key : framework_registry().names())
        cases.push_back({key, [key] { return make_framework_config(key)->make_framework(); }, key == "cppasync",
                         key == "cppasync" || key == "spawn"});
    cases.push_back({"pushpool_bounded",
                     [] {
                         return std::make_unique<PushPool>(PushPool::Settings{2, true, 64}, no_start);
                     },
                     false, false});
    cases.push_back({"taskqueue_of_one", [] { return std::make_unique<TaskQueue>(1, no_start); }, false, false});
    cases.push_back({"pushpool_narrow",
                     [] {
                         return std::make_unique<PushPool>(PushPool::Settings{0, false, 1}, no_start);
                     },
                     false, false, 4});
    return cases;
}

class Frameworks : public testing::TestWithParam<FrameworkCase> {
protected:
    const std::unique_ptr<ParallelFramework> framework = GetParam().make();

    /// What a call on a range throws if the tasks of `failing` throw their index; -1 for nothing.
    int thrown_index(std::uint32_t count, const std::vector<std::uint32_t>& failing, std::atomic<unsigned>& ran) {
        Action action([&](std::uint32_t index) {
            ++ran;
            if (std::find(failing.begin(), failing.end(), index) != failing.end()) throw static_cast<int>(index);
        });
        try {
            framework->run_in_parallel(action, 0, count);
        } catch (int index) {
            return index;
        }
        return -1;
    }
};

TEST_P(Frameworks, EveryTaskOfARangeRunsOnce) {
    for (std::uint32_t count : {0u, 1u, 2u, 16u, 17u, 64u, 65u, 100u, 10'000u}) {
#if defined(ZORVANE_SANITIZED)
        count = std::min(count, 500u); // a sanitizer's threads are large, and some frameworks start one for each task
#endif
        constexpr std::uint32_t low = 5;
        std::vector<std::atomic<int>> runs(count);
        Action action([&](std::uint32_t index) { ++runs[index - low]; });
        framework->run_in_parallel(action, low, low + count);
        EXPECT_TRUE(std::all_of(runs.begin(), runs.end(), [](const auto& n) { return n == 1; })) << count;
    }
    Action never([](std::uint32_t) { FAIL(); });
    framework->run_in_parallel(never, 7, 3);
}

/// Adds 1 for each leaf of a tree of pairs.
class Tree final : public BasicAction {
public:
    Tree(ParallelFramework& framework_, unsigned left_, unsigned right_, std::atomic<std::uint64_t>& leaves_)
        : framework(framework_), left(left_), right(right_), leaves(leaves_) {}

    void run(std::uint32_t) override {
        if (left == 0 || right == 0) {
            ++leaves;
            return;
        }
        Tree first(framework, left - 1, right, leaves), second(framework, left - 1, right - 1, leaves);
        framework.run_in_parallel(first, second);
    }

private:
    ParallelFramework& framework;
    const unsigned left, right;
    std::atomic<std::uint64_t>& leaves;
};

TEST_P(Frameworks, NestedPairsOfTwentyLevelsEnd) {
    // Sums of binomial coefficients: 20 levels with few branches for frameworks that make a thread of each task.
    const auto leaves_of = [](unsigned left, unsigned right) {
        std::vector<std::uint64_t> row(right + 1, 1);
        for (unsigned level = 0; level < left; ++level)
            for (unsigned r = right; r > 0; --r) row[r] += row[r - 1];
        return row[right];
    };
    const unsigned branches = GetParam().thread_per_task ? 2 : 4;
    std::atomic<std::uint64_t> leaves{0};
    Tree(*framework, 20, branches, leaves).run(0);
    EXPECT_EQ(leaves, leaves_of(20, branches));
}

TEST_P(Frameworks, RangesInsideRangesOfSeveralThreadsEnd) {
    std::atomic<unsigned> runs{0};
    Action leaf([&](std::uint32_t) { ++runs; });
    Action inner([&](std::uint32_t) { framework->run_in_parallel(leaf, 0, 5); });
    Action outer([&](std::uint32_t) { framework->run_in_parallel(inner, inner); });
    std::vector<std::thread> callers;
    for (int i = 0; i < 4; ++i)
        callers.emplace_back([&] {
            for (int k = 0; k < 10; ++k) framework->run_in_parallel(outer, 0, 7);
        });
    for (std::thread& caller : callers) caller.join();
    EXPECT_EQ(runs, 4u * 10 * 7 * 2 * 5);
}

TEST_P(Frameworks, AnExceptionComesOutWhenAllTasksHaveEnded) {
    for (const std::uint32_t count : {2u, 8u, 40u, 100u}) {
        for (const std::vector<std::uint32_t>& failing : std::vector<std::vector<std::uint32_t>>{
                 {0}, {1}, {count - 1}, {count / 2}, {0, count - 1}, {1, 2, 3}, {0, 1}}) {
            std::atomic<unsigned> ran{0};
            const int thrown = thrown_index(count, failing, ran);
            SCOPED_TRACE(GetParam().name + " count " + std::to_string(count) + " first failing "
                         + std::to_string(failing[0]));
            EXPECT_TRUE(std::find(failing.begin(), failing.end(), static_cast<std::uint32_t>(thrown)) != failing.end());
            if (GetParam().name == "none") {
                EXPECT_EQ(ran, static_cast<unsigned>(thrown) + 1); // passes straight through
            } else {
                EXPECT_EQ(ran, count);
            }
            // The caller's own task aside, the lowest index wins where records keep the exceptions apart.
            const bool caller_fails = failing.back() == count - 1 || failing[0] == 0;
            if (!GetParam().first_in_time && !caller_fails && count <= GetParam().flat_limit) {
                EXPECT_EQ(thrown, static_cast<int>(failing[0]));
            }
        }
    }
}

TEST_P(Frameworks, APairThatThrowsHasRunBoth) {
    for (const int failing : {0, 1, 2}) {
        std::atomic<int> runs{0};
        Action first([&](std::uint32_t) {
            ++runs;
            if (failing != 1) throw AlgorithmFailedException("first", "fails");
        });
        Action second([&](std::uint32_t) {
            ++runs;
            if (failing != 0) throw AlgorithmFailedException("second", "fails");
        });
        EXPECT_THROW(framework->run_in_parallel(first, second), AlgorithmFailedException);
        EXPECT_EQ(runs, GetParam().name == "none" && failing != 1 ? 1 : 2);
    }
    // The framework goes on working.
    std::atomic<unsigned> ran{0};
    EXPECT_EQ(thrown_index(64, {}, ran), -1);
    EXPECT_EQ(ran, 64u);
}

TEST_P(Frameworks, ANestedCallFailsAlsoWhileAnOuterOneUnwinds) {
    std::atomic<bool> returned_normally{false};
    Action fails([](std::uint32_t) { throw 1; });
    Action nests([&](std::uint32_t) {
        framework->run_in_parallel(fails, fails);
        returned_normally = true;
    });
    for (int i = 0; i < 20; ++i) EXPECT_THROW(framework->run_in_parallel(fails, nests), int);
    EXPECT_FALSE(returned_normally);
}

INSTANTIATE_TEST_SUITE_P(Every, Frameworks, testing::ValuesIn(framework_cases()),
                         [](const auto& framework_case) { return framework_case.param.name; });

TEST(FanOut, SplitsALongRangeIntoAboutItsRoot) {
    const struct {
        std::uint32_t tasks, limit, groups, block;
    } cases[] = {{100, 64, 16, 7}, {65, 64, 16, 5}, {10'000, 64, 64, 157}, {5, 4, 4, 2}, {~0u, 64, 64, 67'108'864}};
    for (const auto& c : cases) {
        const FanOut fan = fan_out_groups(c.tasks, c.limit);
        EXPECT_EQ(fan.groups, c.groups) << c.tasks;
        EXPECT_EQ(fan.block, c.block) << c.tasks;
        EXPECT_GE(std::uint64_t{fan.groups} * fan.block, c.tasks);
    }
}

TEST(PushPool, GrowsOnlyAsItsSettingsAllow) {
    PushPool bounded({4, true, 64}, no_start);
    EXPECT_EQ(bounded.worker_count(), 3u);
    PushPool unbounded({0, false, 64}, no_start);
    const std::uint32_t before = unbounded.worker_count();
    std::atomic<std::uint32_t> waiting{0};
    Action meet([&](std::uint32_t) { // ends only if all tasks run at once
        ++waiting;
        while (waiting < before + 5) std::this_thread::yield();
    });
    unbounded.run_in_parallel(meet, 0, before + 5);
    EXPECT_GE(unbounded.worker_count(), before + 4);
}

TEST(WorkQueue, ABurstWakesAsManyThreadsAsItNeeds) {
    const auto cores = static_cast<std::uint32_t>(platform::usable_cores().size());
    WorkQueueFramework framework(64);
    Action first([](std::uint32_t) {});
    framework.run_in_parallel(first, 0, 2); // leaves one thread, soon idle
    std::atomic<std::uint32_t> waiting{0};
    Action meet([&](std::uint32_t) { // ends only if all run at once: the caller and a thread for each core
        ++waiting;
        while (waiting <= cores) std::this_thread::yield();
    });
    framework.run_in_parallel(meet, 0, cores + 1);
    EXPECT_EQ(waiting, cores + 1);
}

} // namespace
