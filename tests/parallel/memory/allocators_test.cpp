#include "parallel/memory/interleave_allocator.h"
#include "parallel/memory/malloc_allocator.h"
#include "parallel/memory/mmap_allocator.h"

#include "app/console/console.h"
#include "parallel/memory/aligned_malloc.h"
#include "parallel/memory/fake_memory.h"
#include "parallel/tasks/simple_frameworks.h"
#include "support/process.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

namespace {

using namespace zvp;
using platform::PageKind;

constexpr std::size_t mib = 1 << 20;

std::vector<std::unique_ptr<MemoryAllocator>> all_allocators() {
    std::vector<std::unique_ptr<MemoryAllocator>> all;
    all.push_back(std::make_unique<MallocAllocator>());
    all.push_back(std::make_unique<MmapAllocator>());
    all.push_back(std::make_unique<InterleaveAllocator>(std::vector<std::uint32_t>{0}));
    return all;
}

TEST(Allocators, GiveWhatWasAskedFor) {
    SpawnFramework threads(64);
    for (const auto& allocator : all_allocators())
        for (const unsigned alignment_bits : {0u, 12u, 23u})
            for (const std::size_t bytes : {std::size_t{1}, 5 * mib + 123}) {
                SCOPED_TRACE(testing::Message() << allocator->key() << " 2^" << alignment_bits << " " << bytes);
                const auto allocation = allocator->allocate({16, &threads}, alignment_bits, bytes);
                ASSERT_NE(allocation->pointer, nullptr);
                EXPECT_GE(allocation->bytes, bytes);
                EXPECT_EQ(reinterpret_cast<std::uintptr_t>(allocation->pointer) % (1u << alignment_bits), 0u);
                const AllocationRecord& record = *allocation->record;
                EXPECT_EQ(record.total_bytes, allocation->bytes);
                EXPECT_LE(record.large_bytes, record.total_bytes);
                std::uint64_t resident = 0;
                for (const auto& [node, count] : record.nodes) resident += count;
                if (!record.nodes.empty()) {
                    EXPECT_EQ(resident, allocation->bytes);
                }
                EXPECT_NE(allocation->pointer[allocation->bytes - 1], std::byte{0}); // touched to its end
            }
}

TEST(Allocators, FailWithoutAPointer) {
    const std::size_t most = ~std::size_t{0};
    for (const auto& allocator : all_allocators()) {
        SCOPED_TRACE(allocator->key());
        EXPECT_EQ(allocator->allocate({}, 12, most)->pointer, nullptr);
        EXPECT_EQ(allocator->allocate({}, 200, 64)->pointer, nullptr);
        if (allocator->key() != "malloc") {
            EXPECT_EQ(allocator->allocate({}, 12, most / 2)->pointer, nullptr);
        }
    }
}

TEST(MallocAllocator, ADamagedBlockIsFreedOrHidden) {
    auto allocation = MallocAllocator().allocate({}, 6, 100);
    std::byte* const p = allocation->pointer;
    p[100] ^= std::byte{1};
    EXPECT_NE(test::printed_by([&] { allocation.reset(); }).find("Memory buffer has been overrun."), std::string::npos);
    p[100] ^= std::byte{1};
    aligned_free(p);
}

struct MmapCase {
    const char* what;
    std::set<PageKind> kinds; // that the system has
    OptionalFlag large, locked;
    std::size_t transparent_bytes; // really in large pages
    bool lockable;
    const char* line; // the report; null for a failure
};

TEST(MmapAllocator, LargeAndLockedPages) {
    constexpr OptionalFlag off = OptionalFlag::disabled, attempt = OptionalFlag::attempt, forced = OptionalFlag::forced;
    constexpr PageKind small = PageKind::small, pool = PageKind::large_pool, joined = PageKind::large_transparent;
    const MmapCase cases[] = {
        {"pool", {small, pool}, attempt, off, 0, false, "4.00 MiB  (locked, 2.00 MiB pages, spread: 100.0%/1)"},
        {"joined",
         {small, joined},
         attempt,
         attempt,
         4 * mib,
         true,
         "4.00 MiB  (locked, 2.00 MiB pages, spread: 100.0%/1)"},
        {"joined, forced", {joined}, forced, off, 4 * mib, true, "4.00 MiB  (2.00 MiB pages, spread: 100.0%/1)"},
        {"joined in part",
         {small, joined},
         attempt,
         off,
         2 * mib,
         true,
         "4.00 MiB  (50% 2.00 MiB pages, spread: 100.0%/1)"},
        {"joined in part, forced", {small, joined}, forced, off, 2 * mib, true, nullptr},
        {"no large pages", {small}, attempt, attempt, 0, true, "3.00 MiB  (locked, spread: 100.0%/1)"},
        {"no large pages, forced", {small}, forced, attempt, 0, true, nullptr},
        {"large pages unwanted", {small, pool}, off, off, 0, true, "3.00 MiB  (spread: 100.0%/1)"},
        {"no lock", {small}, off, attempt, 0, false, "3.00 MiB  (spread: 100.0%/1)"},
        {"no lock, forced", {small}, off, forced, 0, false, nullptr},
        {"joined, no lock, forced", {small, joined}, attempt, forced, 4 * mib, false, nullptr},
        {"no memory", {}, attempt, attempt, 0, true, nullptr},
    };
    for (const MmapCase& expect : cases) {
        SCOPED_TRACE(expect.what);
        test::FakeMemory system;
        system.kinds = expect.kinds;
        system.transparent_bytes = expect.transparent_bytes;
        if (!expect.lockable) system.lock = [](std::byte*, std::size_t) { return ENOMEM; };
        MmapAllocator allocator(system);
        allocator.large_pages.value = expect.large;
        allocator.locked_pages.value = expect.locked;
        auto allocation = allocator.allocate({}, 12, 3 * mib - 5);
        ASSERT_EQ(allocation->pointer != nullptr, expect.line != nullptr);
        if (expect.line) {
            EXPECT_EQ(allocation->record->one_line(), expect.line);
            const AllocationRecord& record = *allocation->record;
            EXPECT_EQ(record.lock_refused,
                      !expect.lockable && expect.locked == attempt && record.large_bytes < record.total_bytes);
        }
        EXPECT_LE(system.maps, 1); // memory that can't be locked isn't provided twice
        allocation.reset();
        EXPECT_EQ(system.mapped, 0);
    }
}

TEST(MmapAllocator, CountsRealTransparentPages) {
    MmapAllocator allocator;
    allocator.large_pages.value = OptionalFlag::forced;
    allocator.locked_pages.value = OptionalFlag::disabled;
    const auto first = allocator.allocate({}, 12, 8 * mib);
    if (!first->pointer) GTEST_SKIP() << "the machine has no large pages";
    const auto second = allocator.allocate({}, 12, 6 * mib); // a neighbour isn't counted in
    ASSERT_NE(second->pointer, nullptr);
    EXPECT_EQ(first->record->large_bytes, 8 * mib);
    EXPECT_EQ(second->record->large_bytes, 6 * mib);
}

TEST(AllocateOrStop, StopsTheProgram) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            test::show_output();
            test::FakeMemory system;
            system.kinds = {};
            std::vector<StatusCell> log;
            MmapAllocator(system).allocate_or_stop(log, {}, 12, 1'234'567);
        },
        testing::ExitedWithCode(1),
        "\nLarge heap allocation failed.\n\nFailed Allocation   1,234,567 \\(1.18 MiB\\)\n\n");
}

TEST(Privileges, AreAskedForByTheSettings) {
    test::FakeMemory system;
    system.answer = {false, 0, EPERM};
    MmapAllocator large(system), locks(system), plain(system);
    InterleaveAllocator spread_locks({0}, system), spread({0}, system);
    for (OptionalFlagConfig* flag :
         {&large.locked_pages, &locks.large_pages, &plain.large_pages, &plain.locked_pages, &spread.locked_pages})
        flag->value = OptionalFlag::disabled;
    const MallocAllocator heap(system);
    const std::pair<const MemoryAllocator*, bool> cases[] = {{&large, true},        {&locks, true},   {&plain, false},
                                                             {&spread_locks, true}, {&spread, false}, {&heap, false}};
    for (const auto& [allocator, asks] : cases) {
        bool granted = asks;
        EXPECT_EQ(test::printed_by([&, asker = allocator] { granted = asker->acquire_privileges(); }),
                  asks ? "setrlimit() error 1\n" : "");
        EXPECT_EQ(granted, !asks);
    }
}

#if !defined(ZORVANE_SANITIZED) // a sanitizer turns page locks into nothing

/// Takes 4 MiB where only 3 can be locked, first as far as possible, then forced.
[[noreturn]] void allocate_without_rights() {
    test::show_output();
    const test::UserLimit limit(RLIMIT_MEMLOCK, 3 * mib, true);
    MmapAllocator allocator;
    allocator.large_pages.value = OptionalFlag::disabled;
    std::vector<StatusCell> log;
    allocator.acquire_privileges();
    const auto part = allocator.allocate_or_stop(log, {}, 12, 4 * mib);
    print_line(log.back().text);
    allocator.locked_pages.value = OptionalFlag::forced;
    allocator.allocate_or_stop(log, {}, 12, 4 * mib);
    std::_Exit(0);
}

TEST(Privileges, AUserWithASmallLimitIsToldNothingOrLocksEverything) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(allocate_without_rights(), testing::ExitedWithCode(1),
                "^4.00 MiB  \\(75% locked, spread: .*\\)\n"
                "\nLarge heap allocation failed.\n\nFailed Allocation   4,194,304 \\(4.00 MiB\\)\n");
}

#endif

TEST(Allocators, EightGibibytes) {
    const char* wanted = std::getenv("ZORVANE_TEST_LARGE");
    if (!wanted || std::string(wanted) != "1") GTEST_SKIP() << "needs ZORVANE_TEST_LARGE=1 and 10 GiB of memory";
    SpawnFramework threads(64);
    for (const auto& allocator : all_allocators()) {
        std::vector<StatusCell> log;
        const auto allocation = allocator->allocate_or_stop(log, {16, &threads}, 12, std::size_t{8} << 30);
        EXPECT_EQ(allocation->record->total_bytes, std::uint64_t{8} << 30);
        std::printf("%s: %s\n", std::string(allocator->key()).c_str(), log.back().text.c_str());
    }
}

} // namespace
