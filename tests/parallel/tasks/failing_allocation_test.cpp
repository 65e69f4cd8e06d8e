// Dispatch when memory runs out. A sanitizer has an operator new of its own.
#if !defined(ZORVANE_SANITIZED)

#include "parallel/tasks/framework_config.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>
#include <stdexcept>

namespace {

/// Allocations of this thread that still succeed before one fails; negative: all succeed.
thread_local int allocations_left = -1;

void* allocate(std::size_t bytes) {
    if (allocations_left >= 0 && allocations_left-- == 0) throw std::bad_alloc();
    if (void* p = std::malloc(bytes == 0 ? 1 : bytes)) return p;
    throw std::bad_alloc();
}

struct Count final : zvp::BasicAction {
    void run(std::uint32_t) override { ++runs; }
    std::atomic<unsigned> runs{0};
};

TEST(Frameworks, AFailingAllocationNeitherHangsNorLosesATask) {
    for (const std::string& key : zvp::framework_registry().names()) {
        for (int position = 0; position < 12; ++position) {
            SCOPED_TRACE(key + ", allocation " + std::to_string(position));
            const auto framework = zvp::make_framework_config(key)->make_framework();
            for (const std::uint32_t tasks : {2u, 20u}) {
                Count count;
                bool thrown = false;
                allocations_left = position;
                try {
                    framework->run_in_parallel(count, 0, tasks);
                } catch (const std::exception&) { // bad_alloc, or what a thread that can't start throws
                    thrown = true;
                }
                allocations_left = -1;
                EXPECT_TRUE(thrown || count.runs == tasks);
                EXPECT_LE(count.runs, tasks);
                framework->run_in_parallel(count, count); // and the framework goes on working
            }
        }
    }
}

} // namespace

void* operator new(std::size_t bytes) { return allocate(bytes); }
void* operator new[](std::size_t bytes) { return allocate(bytes); }
void operator delete(void* p) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
void operator delete[](void* p, std::size_t) noexcept { std::free(p); }

#endif
