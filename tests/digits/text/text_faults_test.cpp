// Faults of the disk while digits are written and read: each is told in its words, and what was good stays.

#include "digits/text/text_support.h"

#include <sys/resource.h>

#include <csignal>

namespace {

using namespace test;
using DigitViewer2::BasicTextReader;
using DigitViewer2::BasicTextWriter;

struct TextFaults : testing::Test {
    std::string store(BasicTextWriter& writer) const {
        return fault_of([&] { writer.store_digits(values.data(), 0, values.size(), buffer_of(sectors), {}); });
    }

    const TemporaryFolder folder;
    const std::string path = folder.path / "out.txt";
    FakeFiles files;
    const Sectors sectors{16'384};
    const Values values = Values(10'000, 4);
};

TEST_F(TextFaults, DiskFull) {
    BasicTextWriter writer(path, "3.1", 10, true, files);
    files.plan(FileCall::write, {ENOSPC});
    EXPECT_EQ(store(writer), fault("RawFile::store()", "pwrite() failed.", "Disk is Full", ENOSPC));
    EXPECT_EQ(store(writer), "nothing"); // the user made room
    writer.close_and_get_basic_reader();
    EXPECT_EQ(read_file(path), "3." + std::string(10'000, '4'));
}

/// The system's own limit, behind which a write fails with EFBIG.
TEST_F(TextFaults, FileSizeLimit) {
    rlimit before;
    getrlimit(RLIMIT_FSIZE, &before);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    std::string told;
    {
        BasicTextWriter writer(path, "3.1", 10);
        rlimit small = before;
        small.rlim_cur = 8'192;
        setrlimit(RLIMIT_FSIZE, &small);
        told = store(writer);
        setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, handler);
    }
    EXPECT_NE(told.find("RawFile::store()|"), std::string::npos) << told;
}

TEST_F(TextFaults, FoldersThatTakeNoFiles) {
    EXPECT_EQ(fault_of([&] { BasicTextWriter("/nowhere at all/out.txt", "3.1", 10); }),
              fault("RawFile()", "Unable to create file.", "Path does not exist.", ENOENT));
    files.plan(FileCall::open, {EROFS});
    EXPECT_EQ(fault_of([&] { BasicTextWriter(path, "3.1", 10, true, files); }).substr(0, 32),
              "RawFile()|Unable to create file.");
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(TextFaults, NoUnbufferedAccess) {
    files.plan(FileCall::direct, {EINVAL});
    const std::string output = printed_by([&] {
        BasicTextWriter writer(path, "3.1", 10, true, files);
        EXPECT_EQ(store(writer), "nothing");
        writer.close_and_get_basic_reader();
    });
    EXPECT_NE(output.find("Buffered access is used instead."), std::string::npos) << output;
    EXPECT_EQ(read_file(path), "3." + std::string(10'000, '4'));
}

TEST_F(TextFaults, FileVanishesBeforeItIsClosed) {
    BasicTextWriter writer(path, "3.1", 10);
    EXPECT_EQ(store(writer), "nothing");
    std::filesystem::remove(path);
    EXPECT_EQ(fault_of([&] { writer.close_and_get_basic_reader(); }),
              fault("RawFile::close_and_set_size()", "Unable to open file.", "Path does not exist.", ENOENT));
    EXPECT_EQ(writer.close_and_get_basic_reader(), nullptr);
}

TEST_F(TextFaults, Reads) {
    write_file(path, "3." + std::string(10'000, '4'));
    EXPECT_EQ(fault_of([&] { BasicTextReader(folder.path / "none.txt", true); }).substr(0, 30),
              "RawFile()|Unable to open file.");
    files.plan(FileCall::read, {EIO});
    EXPECT_NE(fault_of([&] { BasicTextReader(path, true, 0, files); }).find("RawFile::load()|pread() failed."),
              std::string::npos);
    BasicTextReader reader(path, true, 0, files);
    Values output(10'000);
    files.plan(FileCall::read, {EIO});
    const auto load = [&] {
        return fault_of([&] { reader.load_digits(output.data(), nullptr, 0, 10'000, buffer_of(sectors), {}); });
    };
    EXPECT_NE(load().find("RawFile::load()|pread() failed."), std::string::npos);
    files.most_bytes = 4'096; // short reads are gone on with
    EXPECT_EQ(load(), "nothing");
    EXPECT_EQ(output, values);
}

} // namespace
