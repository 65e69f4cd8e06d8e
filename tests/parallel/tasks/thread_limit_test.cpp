// Frameworks in a process that the system gives no threads, or only few. The tests run in processes of their own.
#include "app/notation/parser.h"
#include "parallel/tasks/parallelization_settings.h"
#include "parallel/tasks/task_queue.h"
#include "support/process.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <system_error>
#include <thread>

namespace {

using namespace zvp;

struct Slow final : BasicAction {
    void run(std::uint32_t) override {
        ++begun;
        std::this_thread::sleep_for(std::chrono::microseconds(200));
        ++ended;
    }
    std::atomic<unsigned> begun{0}, ended{0};
};

/// Ends the process with code 1 and a line on standard error unless the expectation holds.
void require(bool holds, const std::string& what) {
    if (holds) return;
    std::fprintf(stderr, "Not so: %s\n", what.c_str());
    std::_Exit(1);
}

/// Whether `call` is told that the system has no thread; no other exception comes.
template <class Call>
bool refused(Call&& call) {
    try {
        call();
        return false;
    } catch (const std::system_error& error) {
        require(error.code() == std::errc::resource_unavailable_try_again, "the error is the thread's");
        return true;
    }
}

struct LimitCase {
    const char* settings;
    bool passes_on; // the refusal, where others run the task on the dispatching thread
};

std::unique_ptr<ParallelFramework> made(const LimitCase& c) {
    const std::string text = std::string("{TaskDecomposition : 8 ") + c.settings + "}";
    return ParallelizationSettings(parse_notation_text(text)->as_object("")).framework->make_framework();
}

/// Works under the limit with a framework that was made in it or before it, then without it.
[[noreturn]] void work_under_limit(const LimitCase& c, unsigned more, bool made_before) {
    std::unique_ptr<ParallelFramework> framework;
    if (made_before) framework = made(c);
    {
        const test::UserLimit limit(RLIMIT_NPROC, test::threads_and(more));
        require(refused([] { std::thread([] {}).join(); }) || more > 0, "the limit binds");
        if (!made_before) framework = made(c);
        for (const std::uint32_t tasks : {2u, 20u, 100u}) {
            Slow slow;
            const bool was_refused = refused([&] { framework->run_in_parallel(slow, 0, tasks); });
            require(slow.begun == slow.ended, "all that began has ended");
            require(was_refused ? c.passes_on && slow.ended < tasks : slow.ended == tasks, "every task has run once");
            require(was_refused || !c.passes_on || more > 0, "the refusal is told");
        }
        Slow slow;
        require(refused([&] { framework->run_in_parallel(slow, slow); }) || slow.ended == 2, "a pair has run");
    }
    Slow slow;
    framework->run_in_parallel(slow, 0, 20);
    require(slow.ended == 20, "with threads again all tasks run");
    framework.reset();
    std::exit(0); // where a sanitizer looks for leaks
}

TEST(ThreadLimit, AFrameworkHangsOrLosesTasksOrLeaks) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    const LimitCase cases[] = {
        {R"(Framework : "none")", false},
        {R"(Framework : "cppasync" AsyncOnly : "true" MaxSequentialDispatch : 64)", true},
        {R"(Framework : "cppasync" AsyncOnly : "false" MaxSequentialDispatch : 64)", false},
        {R"(Framework : "spawn" MaxSequentialDispatch : 64)", true},
        {R"(Framework : "taskqueue" WorkerThreads : 0)", false},
        {R"(Framework : "pushpool" WorkerThreads : 0 Randomization : "true" MaxSequentialDispatch : 64)", false},
        {R"(Framework : "pushpool" WorkerThreads : 4 Randomization : "false" MaxSequentialDispatch : 64)", false},
        {R"(Framework : "winpool" MaxSequentialDispatch : 64)", false},
    };
    for (const LimitCase& c : cases)
        for (const unsigned more : {0u, 2u})
            for (const bool made_before : {false, true}) {
                SCOPED_TRACE(testing::Message()
                             << c.settings << ", " << more << " threads, made before " << made_before);
                EXPECT_EXIT(work_under_limit(c, more, made_before), testing::ExitedWithCode(0), "");
            }
}

[[noreturn]] void dispatch_under_limit() {
    TaskQueue queue(1, [](std::uint32_t) {});
    AsyncHandle handle;
    Slow slow;
    {
        const test::UserLimit limit(RLIMIT_NPROC, test::threads_and(0));
        require(refused([&] { queue.dispatch(handle, slow, 0); }), "the queue tells");
        require(refused([&] { queue.push_back(slow, 0); }), "and queues nothing");
        require(refused([&] { dispatch_async(handle, slow, 0); }), "the thread is refused");
        handle.join(); // holds nothing
    }
    queue.dispatch(handle, slow, 0);
    handle.join();
    require(slow.ended == 1, "only the last task ran");
    std::exit(0);
}

TEST(ThreadLimit, ADispatchedTaskIsLostSilently) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(dispatch_under_limit(), testing::ExitedWithCode(0), "");
}

} // namespace
