#include "platform/file.h"
#include "session/memory_check.h"
#include "session/working_memory.h"

#include "app/console/linear_console_status.h"
#include "app/raised.h"
#include "parallel/memory/allocator_registry.h"
#include "support/program.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using namespace zvp;
using test::printed_by;
using test::raised_by;

TEST(WorkingMemory, AWriteBesideTheBufferIsMissed) {
    for (const std::string& key : allocator_registry().names()) {
        const std::unique_ptr<MemoryAllocator> allocator = make_allocator(key);
        for (const std::uint64_t bytes : {64u, 4096u, 1'000'064u}) {
            std::vector<StatusCell> report;
            const WorkingMemory memory(*allocator, {}, bytes, report);
            EXPECT_EQ(report.size(), 1u);
            const AlignedBufferC<64> buffer = memory.buffer();
            EXPECT_GE(buffer.bytes, bytes);
            EXPECT_EQ(buffer.bytes % 64, 0u);
            std::memset(buffer.pointer, 0xFF, buffer.bytes);
            EXPECT_EQ(raised_by([&] { memory.check_guards(); }), "nothing") << key;
            const struct {
                std::byte* place;
                const char* message;
            } cases[] = {{buffer.pointer - 1, "Memory buffer has been underrun."},
                         {buffer.pointer - 4, "Memory buffer has been underrun."},
                         {buffer.pointer + buffer.bytes, "Memory buffer has been overrun."},
                         {buffer.pointer + buffer.bytes + 3, "Memory buffer has been overrun."}};
            for (const auto& [place, message] : cases) {
                const std::byte before = *place;
                *place ^= std::byte{1};
                EXPECT_EQ(raised_by([&] { memory.check_guards(); }),
                          std::string("AlgorithmFailedException: ") + message);
                *place = before;
            }
            EXPECT_EQ(raised_by([&] { memory.check_guards(); }), "nothing");
        }
    }
}

TEST(MemoryCheck, AShortageIsNotTold) {
    const std::string advice = "\n\nInsufficient memory may lead to virtual memory thrashing which can cause severe\n"
                               "performance degradation and/or system unresponsiveness.\n";
    const struct {
        std::uint64_t bytes;
        platform::PhysicalMemory machine;
        std::string told;
    } cases[] = {
        {1000, {1000, 1000}, ""},
        {1000, {0, 0}, ""}, // the system doesn't tell
        {1001, {2000, 1000}, "\nThere is insufficient available physical memory." + advice},
        {2001, {2000, 1000}, "\nThere is insufficient physical memory." + advice},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(printed_by([&] {
                      LinearConsoleRoot sink;
                      check_physical_memory(sink, c.bytes, c.machine);
                  }),
                  c.told);
        EXPECT_EQ(memory_obstacle(c.bytes, c.machine).empty(), c.bytes != 2001);
    }
    const platform::PhysicalMemory machine = platform::physical_memory();
    EXPECT_GT(machine.available, 0u);
    EXPECT_LE(machine.available, machine.total);
}

TEST(DiskCheck, WarnsWhereTheDigitsDoNotFit) {
    const auto told = [](std::uint64_t bytes, std::optional<std::uint64_t> free) {
        return printed_by([&] {
            LinearConsoleRoot sink;
            check_disk_space(sink, bytes, "/disk/", free);
        });
    };
    EXPECT_EQ(told(1000, 1000) + told(1000, std::nullopt), "");
    EXPECT_NE(told(2049, 2048).find("    Path:           /disk/\n    Space Needed:   2.00 KiB\n"), std::string::npos);
    EXPECT_GT(platform::free_disk_bytes("").value_or(0), 0u);
    EXPECT_EQ(platform::free_disk_bytes("/no/such/folder"), std::nullopt);
}

} // namespace
