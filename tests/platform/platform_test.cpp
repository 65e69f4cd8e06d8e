#include "platform/clock.h"
#include "platform/file.h"
#include "platform/kernel_set.h"
#include "platform/system_error.h"
#include "platform/threads.h"
#include "support/program.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace {

using namespace zvp::platform;

TEST(KernelSet, IsTheBestThatRunsUnlessOneIsForced) {
    KernelSet best = KernelSet::sse3;
    for (const KernelSet set : all_kernel_sets) {
        const std::string name(kernel_set_name(set));
        if (kernel_set_supported(set)) {
            best = set;
            EXPECT_EQ(choose_kernel_set(name).set, set);
            EXPECT_EQ(choose_kernel_set(name).error, "");
        } else {
            EXPECT_NE(choose_kernel_set(name).error.find(name), std::string::npos);
        }
    }
    EXPECT_EQ(choose_kernel_set("").set, best);
    EXPECT_NE(choose_kernel_set("AVX2").error.find("\"AVX2\""), std::string::npos);
}

TEST(Clock, ASignalSeesTheSameLocalTime) {
    // A second may pass between the two calls, so that a few tries must include an equal pair.
    bool equal = false;
    for (int i = 0; i < 5 && !equal; ++i) {
        const CalendarTime a = local_time(), b = local_time_in_signal();
        equal = a.year == b.year && a.month == b.month && a.day == b.day && a.hour == b.hour && a.minute == b.minute
                && a.second == b.second && a.weekday == b.weekday;
    }
    EXPECT_TRUE(equal);
}

TEST(Threads, BindingToAUsableCoreHolds) {
    const std::vector<unsigned>& cores = usable_cores();
    ASSERT_FALSE(cores.empty());
    EXPECT_EQ(bind_thread_to_core(cores.back()), 0);
    EXPECT_EQ(bind_thread_to_core(1'000'000), EINVAL);
}

TEST(File, AFailedWriteLeavesTheOldFile) {
    const test::TemporaryFolder folder;
    const std::string path = folder.path / std::string(250, 'x'); // too long for the name of a fresh copy beside it
    test::write_file(path, "old");
    EXPECT_EQ(write_whole_file(path, "fresh"), ENAMETOOLONG);
    std::string content;
    EXPECT_EQ(read_whole_file(path, content), 0);
    EXPECT_EQ(content, "old");
    EXPECT_EQ(read_whole_file(folder.path, content), EISDIR);
    EXPECT_EQ(read_whole_file(folder.path / "none", content), ENOENT);
}

TEST(SystemError, TellsCausesThatAUserCanMend) {
    EXPECT_EQ(system_error_text(ENOENT), "Path does not exist.");
    EXPECT_EQ(system_error_text(EACCES), "Access Denied");
    EXPECT_EQ(system_error_text(ENOSPC), "Disk is Full");
    EXPECT_EQ(system_error_text(EINVAL), "Invalid parameter. This can happen if the sector alignment is too small.");
    EXPECT_TRUE(system_error_text(EXDEV).starts_with("Unknown Error, See:\n"));
}

} // namespace
