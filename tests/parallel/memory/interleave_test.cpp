#include "parallel/memory/interleave_allocator.h"
#include "parallel/memory/node_binder.h"

#include "parallel/memory/fake_memory.h"
#include "parallel/tasks/task_handle.h"
#include "platform/threads.h"
#include "support/process.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <thread>

namespace {

using namespace zvp;

constexpr std::size_t page = 4096;

/// A system that counts the address ranges which aren't given back.
struct Nodes : test::FakeMemory {
    explicit Nodes(unsigned count) {
        node_count = count;
        reserving = true;
    }
};

std::vector<std::string> sorted(std::vector<std::string> lines) {
    std::sort(lines.begin(), lines.end());
    return lines;
}

/// The lines that aren't about threads bound to nodes of the machine, which this one may not have.
std::vector<std::string> placement_warnings(const Allocation& allocation) {
    std::vector<std::string> lines = allocation.record->warnings;
    std::erase_if(lines, [](const std::string& line) { return line.find("failed to bind") != std::string::npos; });
    return sorted(lines);
}

TEST(Interleave, RoundRobinGivesDoubleNodesDoubleShares) {
    Nodes system(2);
    InterleaveAllocator allocator({0, 0, 1}, system);
    allocator.hashed = false;
    auto allocation = allocator.allocate({}, 12, 3000 * page);
    ASSERT_NE(allocation->pointer, nullptr);
    EXPECT_EQ(allocation->record->nodes, (NodeBytes{{0, 2000 * page}, {1, 1000 * page}}));
    EXPECT_EQ(placement_warnings(*allocation), std::vector<std::string>{});
    EXPECT_EQ(allocation->record->locked_bytes, 3000 * page);
    EXPECT_EQ(system.restored, 3);
    allocation.reset();
    EXPECT_EQ(system.mapped, 0);
}

TEST(Interleave, EveryPageIsTakenOnce) {
    for (const bool hashed : {false, true})
        for (const std::size_t pages : {1u, 2u, 5u, 1500u}) {
            SCOPED_TRACE(testing::Message() << pages << (hashed ? " hashed" : " in turn"));
            Nodes system(4);
            InterleaveAllocator allocator({0, 1, 2, 3}, system);
            allocator.hashed = hashed;
            const auto allocation = allocator.allocate({}, 12, pages * page);
            NodeBytes expected;
            for (std::size_t i = 0; i < pages; ++i) {
                std::byte* const p = allocation->pointer + i * page;
                EXPECT_EQ(system.asked.count(p), 1u);
                EXPECT_EQ(p[1], allocation->pointer[1]); // touched on its own
                const auto address = reinterpret_cast<std::uintptr_t>(p);
                expected[static_cast<std::uint32_t>(hashed ? page_hash(address) % 4 : i % 4)] += page;
            }
            EXPECT_EQ(allocation->record->nodes, expected);
        }
}

TEST(Interleave, HashSpreadsEvenly) {
    EXPECT_EQ(page_hash(0), 0xAD4AE47Fu); // worked out apart from this code
    EXPECT_EQ(page_hash(0x1000), 0xE9019BCDu);
    EXPECT_EQ(page_hash(0x7'DEAD'B000), 0x7073D21Fu); // the low 32 bits alone
    std::array<unsigned, 3> shares{};
    for (std::uint64_t i = 0; i < 30'000; ++i) ++shares[page_hash(0x7F12'3456'0000 + i * page) % 3];
    for (const unsigned share : shares) EXPECT_NEAR(share, 10'000, 400);
}

TEST(Interleave, NodesThatDontExistAreTold) {
    Nodes system(1);
    InterleaveAllocator allocator({0, 3000}, system);
    allocator.hashed = false;
    const auto allocation = allocator.allocate({}, 12, 101 * page);
    ASSERT_NE(allocation->pointer, nullptr);
    EXPECT_EQ(allocation->record->nodes, (NodeBytes{{0, 101 * page}}));
    const std::vector<std::string>& all = allocation->record->warnings;
    EXPECT_EQ(std::count(all.begin(), all.end(), "Thread 1 failed to bind to node 3000\n"), 1);
    EXPECT_EQ(placement_warnings(*allocation),
              (std::vector<std::string>{"50 pages intended for node 3000 landed on node 0 instead.",
                                        "Thread 1 set_mempolicy() error 22, count = 50\n"}));
}

TEST(Interleave, TheRealSystemProvidesAnAbsentNodesPages) {
    const auto allocation = InterleaveAllocator({4'000'000'000u}).allocate({}, 12, 7 * page);
    ASSERT_NE(allocation->pointer, nullptr);
    EXPECT_EQ(allocation->record->warnings.at(1), "Thread 0 set_mempolicy() error 22, count = 7\n");
}

TEST(Interleave, AnAbsentNodesWorkerStaysOnTheCoreOfItsStarter) {
    platform::ThreadAffinity affinity;
    std::thread([&] {
        platform::bind_thread_to_core(platform::usable_cores().front());
        struct Read final : BasicAction {
            explicit Read(platform::ThreadAffinity& affinity_) : affinity(affinity_) {}
            void run(std::uint32_t) override { platform::read_thread_affinity(affinity); }
            platform::ThreadAffinity& affinity;
        } read(affinity);
        AsyncHandle handle;
        node_queue(3001).dispatch(handle, read, 0);
        handle.join();
    }).join();
    EXPECT_EQ(affinity.bits, platform::usable_cores());
}

[[noreturn]] void allocate_without_threads() {
    platform::bind_thread_to_core(platform::usable_cores().back());
    const test::UserLimit limit(RLIMIT_NPROC, test::threads_and(0));
    const auto allocation = InterleaveAllocator({0, 3000}).allocate({}, 12, 7 * page);
    platform::ThreadAffinity affinity;
    platform::read_thread_affinity(affinity);
    const bool stays = affinity.bits == std::vector{platform::usable_cores().back()};
    std::_Exit(allocation->pointer && stays ? 0 : 1);
}

TEST(Interleave, WithoutThreadsItFailsOrMovesItsCaller) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(allocate_without_threads(), testing::ExitedWithCode(0), "");
}

TEST(Interleave, FailedQueriesAreToldAndDontCount) {
    Nodes system(1);
    system.node_of = [n = 0](void*) mutable { return ++n % 3 == 0 ? -EFAULT : 0; };
    InterleaveAllocator allocator({0}, system);
    const auto allocation = allocator.allocate({}, 12, 600 * page);
    EXPECT_EQ(placement_warnings(*allocation),
              std::vector<std::string>{"Thread 0 move_pages() error 14, count = 200\n"});
    EXPECT_EQ(allocation->record->nodes, (NodeBytes{{0, 400 * page}}));
}

TEST(Interleave, FailuresGiveTheRangeBack) {
    Nodes system(1);
    InterleaveAllocator allocator({0}, system);
    system.commit_error = ENOMEM;
    EXPECT_EQ(allocator.allocate({}, 12, page)->pointer, nullptr);
    EXPECT_EQ(system.mapped, 0);
    system.commit_error = 0;
    system.lock = [](std::byte*, std::size_t) { return EPERM; };
    EXPECT_NE(allocator.allocate({}, 12, page)->pointer, nullptr);
    allocator.locked_pages.value = OptionalFlag::forced;
    EXPECT_EQ(allocator.allocate({}, 12, page)->pointer, nullptr);
    EXPECT_EQ(system.mapped, 0);
}

struct Memoryless : test::FakeMemory {
    bool node_has_memory(unsigned node) override { return node == with_memory; }
    unsigned with_memory = ~0u;
};

TEST(Interleave, DefaultNodesHaveMemory) {
    platform::MachineTopology described;
    described.groups = {{0, {{0, 0u}, {1, 2u}, {2, 5u}}}};
    const Topology machine(described);
    Memoryless system;
    std::vector<std::uint32_t> nodes;
    EXPECT_EQ(test::printed_by([&] { nodes = usable_nodes(machine, system); }),
              "\nUnable to find any usable NUMA nodes. Will attempt to use all of them...\n");
    EXPECT_EQ(nodes, (std::vector<std::uint32_t>{0, 2, 5}));
    system.with_memory = 2;
    EXPECT_EQ(usable_nodes(machine, system), (std::vector<std::uint32_t>{2}));
}

} // namespace
