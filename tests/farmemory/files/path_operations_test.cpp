#include "farmemory/files/path_operations.h"

#include "farmemory/files/base_file.h"
#include "farmemory/files/file_support.h"
#include "support/process.h"

#include <gtest/gtest.h>

namespace {

using namespace FileIO;
using test::fault;
using test::fault_of;
using test::FileCall;
namespace fs = std::filesystem;

using Sleeps = std::vector<unsigned>;

TEST(PathIsWritable, LeavesNothingBehind) {
    const test::TemporaryFolder folder;
    test::FakeFiles files;
    EXPECT_TRUE(path_is_writable(folder.path, files));
    EXPECT_TRUE(path_is_writable(folder.path.string() + "/", files));
    EXPECT_FALSE(path_is_writable(folder.path / "none", files));
    files.plan(FileCall::open, {EROFS});
    EXPECT_FALSE(path_is_writable(folder.path, files));
    fs::permissions(folder.path, fs::perms::owner_read | fs::perms::owner_exec | fs::perms::others_exec);
    {
        const test::UserLimit user(RLIMIT_CORE, 0);
        EXPECT_FALSE(path_is_writable(folder.path, files));
    }
    fs::permissions(folder.path, fs::perms::owner_all);
    EXPECT_TRUE(fs::is_empty(folder.path));
    files.plan(FileCall::close, {EIO});
    files.plan(FileCall::remove, {EBUSY, EBUSY});
    const std::string printed = test::printed_by([&] { EXPECT_TRUE(path_is_writable(folder.path, files)); });
    const std::string again = "Unable to delete file.\nRe-attempting...\n";
    EXPECT_EQ(printed,
              "\nUnable to close file.\nPath: " + (folder.path / "pathcheck.sf").string() + "\n" + again + again);
    EXPECT_EQ(files.slept, (Sleeps{1, 2}));
    EXPECT_TRUE(fs::is_empty(folder.path));
}

TEST(RenameWithRetry, KeepsTheTargetUntilItWorks) {
    const test::TemporaryFolder folder;
    const std::string fresh = folder.path / "new", old = folder.path / "old";
    test::write_file(fresh, "fresh");
    test::write_file(old, "good");
    test::FakeFiles files;
    files.plan(FileCall::rename, {EIO, EROFS});
    files.on_sleep = [&] { EXPECT_EQ(test::read_file(old), "good"); };
    const std::string printed = test::printed_by([&] { rename_with_retry(fresh, old, files); });
    EXPECT_EQ(printed, "Unable to rename file.\nError Code: 5\nRe-attempting...\n"
                       "Unable to rename file.\nError Code: 30\nRe-attempting...\n");
    EXPECT_EQ(test::read_file(old), "fresh");
    EXPECT_FALSE(fs::exists(fresh));
    test::write_file(fresh, "newer");
    files.plan(FileCall::rename, {EEXIST});
    rename_with_retry(fresh, old, files);
    EXPECT_EQ(test::read_file(old), "newer");
}

TEST(RenameWithRetry, AnUnattendedRunEndsInsteadOfPrintingForEver) {
    EXPECT_EXIT(
        {
            test::show_output();
            test::FakeFiles files;
            files.on_sleep = [&] {
                if (files.slept.back() == 64) zvp::platform::file_system().rename("none", "none");
            };
            rename_with_retry("none", "/none/none", files);
        },
        testing::ExitedWithCode(1), "The fault lasts, and nobody is there to mend it. Stopping.");
}

TEST(BaseFile, OpeningWaitsUntilTheFaultIsMended) {
    const test::TemporaryFolder folder;
    const std::string path = folder.path / "f";
    const std::string lines =
        "Unable to open file.\nPath: " + path + "\nError Code: 2\nPath does not exist.\nRe-attempting...\n";
    const std::string exception = "\nException Encountered: FileException\n\nIn Function:        RawFile()\n"
                                  "Error Code:         2\nPath:   "
                                  + path + "\n\nUnable to open file.\n\nPath does not exist.\n\n\n";
    for (const bool quiet : {false, true}) {
        fs::remove(path);
        test::FakeFiles files;
        files.on_sleep = [&] {
            if (files.slept.size() == 2) test::write_file(path, "content");
        };
        const std::string printed = test::printed_by([&] {
            BaseFile file(path, quiet, true, files);
            char content[100];
            EXPECT_EQ(file.load(0, content, sizeof content).bytes, 7u);
        });
        EXPECT_EQ(printed, quiet ? lines + lines : exception + lines + exception + lines);
    }
}

TEST(BaseFile, CreatingOnAFullDiskWaitsAndKeepsWhatWasThere) {
    const test::TemporaryFolder folder;
    const std::string path = folder.path / "f";
    for (const std::string before : {"", "good"}) {
        if (!before.empty()) test::write_file(path, before);
        test::FakeFiles files;
        files.plan(FileCall::set_length, {ENOSPC});
        files.on_sleep = [&] { EXPECT_EQ(fs::exists(path) ? test::read_file(path) : "", before); };
        const std::string printed = test::printed_by([&] {
            BaseFile file(8, path, true, files);
            EXPECT_EQ(file.store(4, "new", 3).bytes, 3u);
        });
        EXPECT_EQ(printed,
                  "Unable to create file.\nPath: " + path + "\nError Code: 28\nDisk is Full\nRe-attempting...\n");
        std::string expected = before;
        expected.resize(8);
        EXPECT_EQ(test::read_file(path), expected.replace(4, 3, "new"));
        fs::remove(path);
    }
}

TEST(BaseFile, RenamingTellsEachStep) {
    const test::TemporaryFolder folder;
    const std::string path = folder.path / "f", target = folder.path / "g", label = "BaseFile::rename()";
    test::FakeFiles files;
    BaseFile file(4, path, false, files);
    files.plan(FileCall::sync, {EIO});
    EXPECT_EQ(fault_of([&] { file.rename(target); }), fault(label, "fsync() failed.", "Write Fault", EIO));
    EXPECT_EQ(file.path(), path);
    BaseFile moved(std::move(file));
    EXPECT_FALSE(file.is_open());
    moved.rename(target, false);
    EXPECT_EQ(moved.store(0, "new", 3).error, 0);
    moved.rename(path);
    EXPECT_EQ(moved.store(0, "new", 3).error, EBADF);
    files.plan(FileCall::open, {EMFILE});
    EXPECT_EQ(fault_of([&] { moved.rename(target); }),
              fault(label, "Unable to reopen file.", "Unknown Error, See:\nman 3 errno", EMFILE));
    EXPECT_EQ(fault_of([&] { moved.rename(path); }), label + "|File isn't open.");
    EXPECT_EQ(test::read_file(target), std::string("new\0", 4));
}

} // namespace
