#include "platform/file_system.h"

#include "platform/system_error.h"
#include "support/fake_files.h"
#include "support/program.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace {

using namespace zvp::platform;
using test::FileCall;

constexpr FileOpening to_read{}, to_write{true, true};

TEST(FileSystem, CutAndInterruptedTransfersStillMoveEverything) {
    const test::TemporaryFolder folder;
    const std::string path = folder.path / "f", text = "0123456789abcdefghijklmnopqrstuvwxyz";
    test::FakeFiles files;
    files.plan(FileCall::open, {EINTR});
    const OpenedFile opened = files.open(path, to_write);
    ASSERT_EQ(opened.error, 0);
    files.most_bytes = 5;
    files.plan(FileCall::write, {EINTR, 0, EINTR});
    const MovedBytes written = files.write_at(opened.file, text.data(), text.size(), 100);
    EXPECT_EQ(written.bytes, text.size());
    std::string back(text.size() + 50, '?');
    files.plan(FileCall::read, {0, EINTR, EINTR});
    const MovedBytes read = files.read_at(opened.file, back.data(), back.size(), 100); // the file ends before
    EXPECT_EQ(read.error, 0);
    EXPECT_EQ(back.substr(0, read.bytes), text);
    files.plan(FileCall::read, {0, EIO});
    const MovedBytes failed = files.read_at(opened.file, back.data(), 20, 100);
    EXPECT_EQ(failed.error, EIO);
    EXPECT_EQ(failed.bytes, 5u);
    EXPECT_EQ(files.read_at(opened.file, back.data(), 2, INT64_MAX - 1ull).error, EINVAL);
    EXPECT_EQ(files.read_at(opened.file, back.data(), 1, ~0ull).error, EINVAL);
    files.plan(FileCall::close, {EINTR});
    EXPECT_EQ(files.close(opened.file), 0);
}

TEST(FileSystem, AWriterIsAloneAndReadersShare) {
    const test::TemporaryFolder folder;
    const std::string path = folder.path / "f";
    test::FakeFiles files;
    const OpenedFile writer = files.open(path, to_write);
    EXPECT_TRUE(writer.created);
    EXPECT_EQ(files.open(path, to_read).error, EBUSY);
    EXPECT_EQ(files.open(path, to_write).error, EBUSY);
    EXPECT_EQ(files.close(writer.file), 0);
    const OpenedFile first = files.open(path, to_read), second = files.open(path, to_read);
    EXPECT_EQ(first.error + second.error, 0);
    EXPECT_EQ(files.open(path, to_write).error, EBUSY);
    files.plan(FileCall::lock, {ENOLCK}); // a file system without locks
    const OpenedFile unlocked = files.open(path, to_write);
    EXPECT_EQ(unlocked.error, 0);
    EXPECT_FALSE(unlocked.created);
    for (const int file : {first.file, second.file, unlocked.file}) EXPECT_EQ(files.close(file), 0);
    EXPECT_EQ(files.open(path, to_write).error, 0);
}

TEST(FileSystem, TakesFilesOnly) {
    const test::TemporaryFolder folder;
    const std::string pipe = folder.path / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(file_system().open(pipe, to_read).error, ESPIPE);
    EXPECT_EQ(file_system().open(pipe, to_write).error, ESPIPE);
    EXPECT_EQ(file_system().open(folder.path, to_read).error, EISDIR);
    EXPECT_EQ(file_system().open(folder.path / "none", to_read).error, ENOENT);
}

TEST(FileSystem, AnUnevenEndOfADirectFileIsTheEnd) {
    for (const char* place : {"", "/dev/shm"}) {
        const test::TemporaryFolder folder;
        const std::string path = *place ? std::string(place) + "/zorvane-direct-test" : std::string(folder.path / "f");
        test::write_file(path, std::string(5000, 'x'));
        const OpenedFile opened = file_system().open(path, {false, false, FileCaching::direct});
        ASSERT_EQ(opened.error, 0);
        alignas(4096) char buffer[8192];
        test::FakeFiles files;
        files.plan(FileCall::read, {0, EINVAL}); // what some file systems say of the uneven place behind the end
        const MovedBytes moved = files.read_at(opened.file, buffer, sizeof buffer, 0);
        EXPECT_EQ(moved.error, 0);
        EXPECT_EQ(moved.bytes, 5000u);
        EXPECT_EQ(file_system().close(opened.file), 0);
        EXPECT_EQ(file_system().remove(path), 0);
    }
}

TEST(SystemError, ABrokenDiskIsToldByDirection) {
    EXPECT_EQ(system_error_text(EIO, FaultDirection::read), "Read Fault");
    EXPECT_EQ(system_error_text(EIO, FaultDirection::write), "Write Fault");
    EXPECT_EQ(system_error_text(EIO), "Cyclic Redundancy Check - Possible Hardware Failure");
    EXPECT_EQ(system_error_text(EBADMSG, FaultDirection::read), system_error_text(EIO));
    EXPECT_EQ(system_error_text(ENOSPC, FaultDirection::write), "Disk is Full");
}

} // namespace
