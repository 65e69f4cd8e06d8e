#include "farmemory/files/raw_file.h"

#include "farmemory/files/file_support.h"
#include "platform/process.h"
#include "support/process.h"

#include <gtest/gtest.h>

namespace {

using namespace FileIO;
using test::fault;
using test::fault_of;
using test::FileCall;
namespace fs = std::filesystem;

const char* const not_open = "File isn't open.";

class RawFileTest : public testing::Test {
protected:
    RawFileTest() { buffer.fill(random); }

    /// A file with the buffer's bytes.
    std::unique_ptr<RawFile> filled(bool raw = true) {
        auto file = std::make_unique<RawFile>(buffer.bytes, path, 12, raw, files);
        EXPECT_EQ(file->store(0, buffer.data, buffer.bytes, true), buffer.bytes);
        return file;
    }

    std::mt19937_64 random{test::seed()};
    test::Sectors buffer{4 * 4096}, back{8 * 4096};
    test::TemporaryFolder folder;
    const std::string path = folder.path / "data", target = folder.path / "target";
    test::FakeFiles files;
};

TEST_F(RawFileTest, GivesBackWhatWasStored) {
    SCOPED_TRACE(test::seed_trace());
    for (const bool raw : {false, true}) {
        auto file = filled(raw);
        EXPECT_EQ(file->load(4096, back.data, 8192, true), 8192u);
        EXPECT_EQ(back.text().substr(0, 8192), buffer.text().substr(4096, 8192));
        EXPECT_EQ(file->load(0, nullptr, 0, true), 0u);
        EXPECT_EQ(file->load(8192, back.data, back.bytes, false), buffer.bytes - 8192);
        EXPECT_EQ(fault_of([&] { file->load(8192, back.data, back.bytes, true); }),
                  "RawFile::load()|Incomplete Read: 8192 / 32768");
        EXPECT_EQ(fault_of([&] { file->load(~0ull << 12, back.data, 4096, true); }),
                  fault("RawFile::load()", "pread() failed.",
                        "Invalid parameter. This can happen if the sector alignment is too small.", EINVAL));
        file->close(true);
        EXPECT_EQ(test::read_file(path), buffer.text());
        EXPECT_EQ(fault_of([&] { file->load(0, back.data, 4096, true); }), std::string("RawFile::load()|") + not_open);
        EXPECT_EQ(fault_of([&] { file->store(0, back.data, 4096, true); }),
                  std::string("RawFile::store()|") + not_open);
        EXPECT_EQ(fault_of([&] { file->set_size(0); }), std::string("RawFile::set_size()|") + not_open);
        EXPECT_EQ(fault_of([&] { file->rename(target, true); }), std::string("RawFile::rename()|") + not_open);
    }
}

TEST_F(RawFileTest, NamesTheFirstMisalignment) {
    RawFile file(buffer.bytes, path, 12, true, files);
    const auto refused = [&](std::size_t address, std::uint64_t offset, std::size_t length) {
        return fault_of([&] { file.store(offset, buffer.data + address, length, true); });
    };
    const std::string function = "AlignedAccessFile::check_alignment()|";
    EXPECT_EQ(refused(512, 1, 1), function + "Buffer is misaligned.");
    EXPECT_EQ(refused(0, 512, 1), function + "Offset is misaligned.");
    EXPECT_EQ(refused(0, 4096, 512), function + "Length is misaligned.");
}

TEST_F(RawFileTest, SplitsOnlyWhatPassesTheChunk) {
    constexpr std::uint64_t mib = 1 << 20, many = mib << 20;
    const struct {
        std::uint64_t bytes, available, chunk;
    } rows[] = {{64 * mib, 0, 64 * mib},
                {64 * mib + 4096, 0, 64 * mib},
                {64 * mib + 4096, many, 64 * mib + 4096},
                {many, 200 * mib + 12'345, 100 * mib + 4096},
                {many, many, 1024 * mib}};
    files.imaginary_transfers = true;
    RawFile file(0, path, 12, true, files);
    for (const auto& row : rows) {
        files.available = row.available;
        EXPECT_EQ(transfer_chunk(row.bytes, 12, files), row.chunk);
        if (row.bytes == many) continue;
        files.transfers.clear();
        EXPECT_EQ(file.load(0, back.data, row.bytes, true), row.bytes);
        std::vector<std::size_t> expected{row.chunk};
        if (row.chunk < row.bytes) expected.push_back(row.bytes - row.chunk);
        EXPECT_EQ(files.transfers, expected);
    }
    EXPECT_GT(zvp::platform::file_system().available_memory(), mib);
}

TEST_F(RawFileTest, AFailedOpeningLeavesTheDiskAsItWas) {
    const struct {
        FileCall call;
        int code;
        const char *function, *message, *text;
    } rows[] = {{FileCall::open, EROFS, "RawFile()", "Unable to create file.", "Access Denied"},
                {FileCall::open, ENOSPC, "RawFile()", "Unable to create file.", "Disk is Full"},
                {FileCall::set_length, ENOSPC, "RawFile::set_size()", "ftruncate() failed.", "Disk is Full"},
                {FileCall::allocate, ENOSPC, "RawFile::set_size()", "fallocate() failed.", "Disk is Full"}};
    for (const auto& row : rows)
        for (const std::string before : {"", "short but good"}) {
            SCOPED_TRACE(testing::Message() << row.message << row.code << before);
            if (!before.empty()) test::write_file(path, before);
            files.plan(row.call, {row.code});
            EXPECT_EQ(fault_of([&] { RawFile(1 << 20, path, 12, true, files); }),
                      fault(row.function, row.message, row.text, row.code));
            EXPECT_EQ(fs::exists(path), !before.empty());
            if (!before.empty()) {
                EXPECT_EQ(test::read_file(path), before);
            }
            fs::remove(path);
        }
    for (const FileMode mode : {FileMode::read, FileMode::read_write})
        EXPECT_EQ(fault_of([&] { RawFile(path, 12, mode, true, files); }),
                  fault("RawFile()", "Unable to open file.", "Path does not exist.", ENOENT));
    test::write_file(path, "old");
    RawFile(path, 12, FileMode::create_empty, true, files);
    EXPECT_EQ(test::read_file(path), "");
}

TEST_F(RawFileTest, FailedTransfersTellTheDirectionAndLoseNothing) {
    auto file = filled();
    files.plan(FileCall::read, {EIO});
    EXPECT_EQ(fault_of([&] { file->load(0, back.data, 4096, false); }),
              fault("RawFile::load()", "pread() failed.", "Read Fault", EIO));
    files.plan(FileCall::write, {EIO, ENOSPC});
    EXPECT_EQ(fault_of([&] { file->store(0, back.data, 4096, false); }),
              fault("RawFile::store()", "pwrite() failed.", "Write Fault", EIO));
    EXPECT_EQ(fault_of([&] { file->store(0, back.data, 4096, false); }),
              fault("RawFile::store()", "pwrite() failed.", "Disk is Full", ENOSPC));
    files.most_bytes = 0;
    EXPECT_EQ(file->store(0, back.data, 4096, false), 0u);
    EXPECT_EQ(fault_of([&] { file->store(0, back.data, 4096, true); }), "RawFile::store()|Incomplete Write: 0 / 4096");
    file.reset();
    EXPECT_EQ(test::read_file(path), buffer.text());
}

TEST_F(RawFileTest, ARealFullDiskKeepsWhatWasWritten) {
    zvp::platform::ignore_write_signals();
    auto file = filled();
    fs::permissions(folder.path, fs::perms::all);
    {
        const test::UserLimit limit(RLIMIT_FSIZE, buffer.bytes);
        EXPECT_EQ(fault_of([&] { file->store(buffer.bytes, back.data, 4096, true); }),
                  fault("RawFile::store()", "pwrite() failed.", "Disk is Full", EFBIG));
        EXPECT_EQ(fault_of([&] { RawFile(1 << 20, target, 12, true, files); }),
                  fault("RawFile::set_size()", "ftruncate() failed.", "Disk is Full", EFBIG));
    }
    EXPECT_FALSE(fs::exists(target));
    file.reset();
    EXPECT_EQ(test::read_file(path), buffer.text());
}

TEST_F(RawFileTest, WhatTheFileSystemLacksIsToldOnce) {
    files.plan(FileCall::direct, {EINVAL, EINVAL, 0});
    files.plan(FileCall::allocate, {EOPNOTSUPP, EOPNOTSUPP});
    const std::string printed = test::printed_by([&] {
        filled();
        filled();
    });
    const std::string rest = "\nPath: " + path + "\nFurther messages for this warning will be suppressed.\n\n";
    EXPECT_EQ(printed, "\nThis file system has no raw I/O. Buffered access is used instead.\n" + rest
                           + "\nfallocate() has failed. Expect performance degradation.\n"
                             "Another file system may take the space at once.\n"
                           + rest);
    EXPECT_EQ(test::read_file(path), buffer.text());
}

TEST_F(RawFileTest, AnyFileSystemTakesRawFiles) {
    const std::string memory = "/dev/shm/zorvane-raw-test";
    test::printed_by([&] { // older systems refuse direct transfers there
        RawFile file(buffer.bytes, memory, 12, true);
        file.keep_on_destroy = false;
        EXPECT_EQ(file.store(0, buffer.data, buffer.bytes, true), buffer.bytes);
        EXPECT_EQ(file.load(0, back.data, buffer.bytes, true), buffer.bytes);
    });
    EXPECT_EQ(back.text().substr(0, buffer.bytes), buffer.text());
    EXPECT_FALSE(fs::exists(memory));
}

TEST_F(RawFileTest, OnlyCachedDataAreFlushed) {
    for (const int refused : {0, EINVAL}) {
        files.told_direct_refusal = true;
        files.plan(FileCall::direct, {refused});
        auto file = filled();
        const unsigned before = files.calls[FileCall::sync];
        file->flush();
        EXPECT_EQ(files.calls[FileCall::sync], before + (refused ? 1 : 0));
    }
    auto file = filled(false);
    files.plan(FileCall::sync, {EIO});
    EXPECT_EQ(fault_of([&] { file->flush(); }), fault("RawFile::flush()", "fsync() failed.", "Write Fault", EIO));
}

TEST_F(RawFileTest, RenamingReplacesAndOpensAgain) {
    test::write_file(target, "old");
    auto file = filled();
    file->rename(target, false);
    EXPECT_EQ(file->path, target);
    EXPECT_FALSE(fs::exists(path));
    EXPECT_EQ(test::read_file(target), buffer.text());
    EXPECT_EQ(file->store(0, buffer.data, 4096, true), 4096u);
    test::write_file(path, "old");
    files.plan(FileCall::rename, {EEXIST}); // a system that doesn't replace
    file->rename(path, true);
    EXPECT_EQ(test::read_file(path), buffer.text());
    EXPECT_EQ(file->load(0, back.data, 4096, true), 4096u);
    EXPECT_TRUE(fault_of([&] { file->store(0, buffer.data, 4096, true); }).starts_with("RawFile::store()|pwrite()"));
}

TEST_F(RawFileTest, AFailedRenamingKeepsBothFiles) {
    const std::string label = "RawFile::rename()", text = "Unable to rename file.";
    const std::string stays = "Unable to rename file because the existing one can't be deleted.";
    const struct {
        FileCall first;
        int code;
        std::string expected;
        bool open;
    } rows[] = {
        {FileCall::rename, EROFS, fault(label, text, "Access Denied", EROFS), false},
        {FileCall::rename, EIO, fault(label, text, "Cyclic Redundancy Check - Possible Hardware Failure", EIO), false},
        {FileCall::rename, EEXIST, fault(label, stays, "Access Denied", EACCES), false},
        {FileCall::sync, EIO, fault(label, "fsync() failed.", "Write Fault", EIO), true}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.expected);
        test::write_file(target, "good");
        auto file = filled();
        files.plan(row.first, {row.code});
        files.plan(FileCall::remove, {EACCES});
        EXPECT_EQ(fault_of([&] { file->rename(target, true); }), row.expected);
        EXPECT_EQ(file->is_open(), row.open);
        EXPECT_EQ(file->path, row.open ? path : "");
        file.reset();
        EXPECT_EQ(test::read_file(path), buffer.text());
        EXPECT_EQ(test::read_file(target), "good");
    }
}

TEST_F(RawFileTest, AVanishedFileIsTold) {
    auto file = filled();
    fs::remove(path);
    EXPECT_EQ(fault_of([&] { file->rename(target, true); }),
              fault("RawFile::rename()", "Unable to rename file.", "Path does not exist.", ENOENT));
    file = filled();
    fs::remove(path);
    EXPECT_EQ(fault_of([&] { file->close_and_set_size(1); }),
              fault("RawFile::close_and_set_size()", "Unable to open file.", "Path does not exist.", ENOENT));
    file = filled();
    fs::remove(path);
    EXPECT_EQ(test::printed_by([&] { file->close(false); }),
              "\nRawFile::close(): Unable to delete file.\nPath: " + path + "\n");
    EXPECT_FALSE(file->is_open());
}

TEST_F(RawFileTest, ClosingKeepsOrRemoves) {
    filled()->close(false);
    EXPECT_FALSE(fs::exists(path));
    filled()->keep_on_destroy = false;
    EXPECT_FALSE(fs::exists(path));
    filled();
    EXPECT_TRUE(fs::exists(path));
    auto file = filled();
    file->close_and_set_size(5001); // not a sector's multiple
    EXPECT_EQ(test::read_file(path), buffer.text().substr(0, 5001));
    EXPECT_FALSE(file->is_open());
    for (const FileCall call : {FileCall::close, FileCall::sync}) {
        file = filled();
        files.plan(call, {EIO});
        EXPECT_EQ(test::printed_by([&] { file->close(true); }),
                  "\nRawFile::close(): Unable to close file.\nPath: " + path + "\n");
        EXPECT_FALSE(file->is_open());
    }
    file = filled();
    files.plan(FileCall::set_length, {EIO});
    EXPECT_TRUE(fault_of([&] { file->close_and_set_size(1); }).starts_with("RawFile::close_and_set_size()|ftruncate"));
    EXPECT_EQ(test::read_file(path), buffer.text());
}

} // namespace
