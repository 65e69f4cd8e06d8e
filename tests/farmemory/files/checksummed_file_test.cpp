#include "farmemory/files/checksummed_file.h"

#include "farmemory/files/file_support.h"
#include "farmemory/files/sector_checksum.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using namespace FileIO;
using test::fault;
using test::fault_of;
using test::FileCall;
namespace fs = std::filesystem;

class ChecksummedFileTest : public testing::Test {
protected:
    ChecksummedFileTest() { buffer.fill(random); }

    /// A file of `sectors` sectors, the first of which hold the buffer's bytes.
    std::unique_ptr<ChecksummedFile> filled(std::size_t sectors = 6) {
        auto file = std::make_unique<ChecksummedFile>(sectors * 4096, path, 12, true, seed, values, 12, files);
        file->store(0, buffer.data, buffer.bytes, values);
        return file;
    }
    std::string loaded(ChecksummedFile& file, std::uint64_t offset, std::size_t length) {
        return fault_of([&] { EXPECT_EQ(file.load(offset, back.data, length, values), length); });
    }
    static void flip_bit(const std::string& name, std::size_t byte) {
        std::string content = test::read_file(name);
        content[byte] = static_cast<char>(content[byte] ^ 1);
        test::write_file(name, content);
    }

    static constexpr std::uint32_t seed = 12'345;
    std::mt19937_64 random{test::seed()};
    test::Sectors buffer{4 * 4096}, back{65'536};
    std::uint32_t values[16] = {};
    test::TemporaryFolder folder;
    const std::string path = folder.path / "data", sums = path + ".checksums", target = folder.path / "target";
    test::FakeFiles files;
};

TEST_F(ChecksummedFileTest, StoresAValueForEachWrittenSector) {
    SCOPED_TRACE(test::seed_trace());
    auto file = filled();
    EXPECT_EQ(loaded(*file, 0, 6 * 4096), "nothing"); // two sectors that nothing wrote among them
    EXPECT_EQ(back.text().substr(0, buffer.bytes), buffer.text());
    file->flush();
    file.reset();
    EXPECT_EQ(fs::file_size(path), 6u * 4096);
    const std::string stored = test::read_file(sums);
    ASSERT_EQ(stored.size(), 24u);
    for (std::size_t i = 0; i < 6; ++i) {
        std::uint32_t value;
        std::memcpy(&value, stored.data() + 4 * i, 4);
        const auto* words = reinterpret_cast<const std::uint64_t*>(buffer.data + 4096 * i);
        EXPECT_EQ(value, i < 4 ? sector_checksum(seed, words, 512) : no_checksum);
    }
}

TEST_F(ChecksummedFileTest, FindsDamage) {
    filled().reset();
    const std::string mismatch = "ChecksummedFile::load()|Checksum Mismatch: Data Corruption at Offset [";
    for (const auto& [name, byte] : {std::pair{path, std::size_t{3 * 4096 - 1}}, {sums, std::size_t{8}}}) {
        flip_bit(name, byte);
        ChecksummedFile file(path, 12, FileMode::read, true, seed, files);
        EXPECT_EQ(loaded(file, 4096, 4096), "nothing");
        EXPECT_EQ(loaded(file, 0, 4 * 4096), mismatch + "8192, 12288)");
        EXPECT_EQ(loaded(file, 3 * 4096, 3 * 4096), "nothing");
        flip_bit(name, byte);
    }
    {
        ChecksummedFile other(path, 12, FileMode::read, true, seed + 1, files);
        EXPECT_EQ(loaded(other, 4096, 4096), mismatch + "4096, 8192)");
    }
    fs::resize_file(sums, 6);
    ChecksummedFile file(path, 12, FileMode::read, true, seed, files);
    EXPECT_EQ(loaded(file, 0, 2 * 4096), "ChecksummedFile::load()|Incomplete Read: 6 / 8");
    EXPECT_EQ(loaded(file, 4096, 8 * 4096), "RawFile::load()|Incomplete Read: 20480 / 32768");
}

TEST_F(ChecksummedFileTest, TellsFaultsOfBothFiles) {
    auto file = filled();
    EXPECT_EQ(fault_of([&] { file->load(0, back.data, 8192, std::span(values, 1)); }),
              "ChecksummedFile::load()|4 of 8");
    EXPECT_EQ(fault_of([&] { file->store(0, back.data, 8192, {}); }), "ChecksummedFile::store()|0 of 8");
    files.plan(FileCall::read, {EIO, 0, EIO});
    EXPECT_EQ(loaded(*file, 0, 4096), fault("RawFile::load()", "pread() failed.", "Read Fault", EIO));
    EXPECT_EQ(loaded(*file, 0, 4096), fault("ChecksummedFile::load()", "pread() failed.", "Read Fault", EIO));
    files.plan(FileCall::write, {0, ENOSPC});
    EXPECT_EQ(fault_of([&] { file->store(0, buffer.data, 4096, values); }),
              fault("ChecksummedFile::store()", "pwrite() failed.", "Disk is Full", ENOSPC));
    files.plan(FileCall::sync, {EIO});
    EXPECT_EQ(fault_of([&] { file->flush(); }),
              fault("ChecksummedFile::flush()", "fsync() failed.", "Write Fault", EIO));
    EXPECT_EQ(fault_of([&] { ChecksummedFile(path, 12, FileMode::create_empty, true, seed, files); }),
              "ChecksummedFile()|A file without a size can't be created.");
    file.reset();
    EXPECT_EQ(fs::file_size(path), 6u * 4096);
}

TEST_F(ChecksummedFileTest, AFailedCreationLeavesNoHalf) {
    files.plan(FileCall::write, {ENOSPC});
    EXPECT_EQ(fault_of([&] { filled(); }), fault("ChecksummedFile()", "pwrite() failed.", "Disk is Full", ENOSPC));
    EXPECT_EQ(fault_of([&] { ChecksummedFile(4096, path, 12, true, seed, values, 3, files); }),
              "ChecksummedFile()|0 of 4");
    EXPECT_TRUE(fs::is_empty(folder.path));
}

TEST_F(ChecksummedFileTest, ASectorBeyondAShortFileCanBeRead) {
    ChecksummedFile file(5000, path, 16, true, seed, values, sizeof values, files);
    EXPECT_EQ(loaded(file, 0, 65'536), "nothing");
    EXPECT_EQ(fs::file_size(sums), 4u);
}

TEST_F(ChecksummedFileTest, BothFilesAreRenamedAndRemoved) {
    test::write_file(target, "old");
    auto file = filled();
    files.plan(FileCall::sync, {EIO}); // the checksums can't be put to the disk: no name changes
    EXPECT_EQ(fault_of([&] { file->rename(target, false); }),
              fault("ChecksummedFile::rename()", "fsync() failed.", "Write Fault", EIO));
    EXPECT_EQ(loaded(*file, 0, 2 * 4096), "nothing");
    EXPECT_EQ(test::read_file(target), "old");
    file->rename(target, false);
    EXPECT_EQ(file->path, target);
    EXPECT_FALSE(fs::exists(path) || fs::exists(sums));
    file->store(4096, buffer.data, 4096, values);
    EXPECT_EQ(loaded(*file, 0, 2 * 4096), "nothing");
    files.plan(FileCall::rename, {EROFS});
    EXPECT_EQ(fault_of([&] { file->rename(path, true); }),
              fault("RawFile::rename()", "Unable to rename file.", "Access Denied", EROFS));
    EXPECT_EQ(file->path, "");
    file.reset();
    EXPECT_TRUE(fs::exists(target) && fs::exists(target + ".checksums"));
    ChecksummedFile(target, 12, FileMode::read, true, seed, files).set_keep_on_destroy(false);
    EXPECT_TRUE(fs::is_empty(folder.path));
}

} // namespace
