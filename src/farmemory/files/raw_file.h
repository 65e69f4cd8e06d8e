#pragma once
// Bulk files, unbuffered or written through.

#include "farmemory/files/aligned_access_file.h"
#include "farmemory/files/file_handle.h"
#include "platform/file_system.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace FileIO {

enum class FileMode : std::uint32_t {
    create_empty = 0, // reading and writing; a file of that name loses what it holds
    read = 1,         // beside other readers
    read_write = 2,
};

/// Transfers up to this size go to the system in one call.
inline constexpr std::uint64_t smallest_chunk = std::uint64_t{64} << 20;
inline constexpr std::uint64_t largest_chunk = std::uint64_t{1} << 30;

/// The most that one call of the system moves when `bytes` remain: half the available memory, since the system pins or
/// caches what a call moves, in sectors of 2^alignment_bits bytes and within the two limits.
std::size_t transfer_chunk(std::uint64_t bytes, std::uint32_t alignment_bits, zvp::platform::FileSystem& system);

/// A file for aligned transfers. `raw`: they pass by the system's memory; where the file system has no such transfers the
/// file is buffered, which is told once in the process. Otherwise writes return when they are on the disk.
///
/// Faults of the system are FileException with the path and errno's value, and nothing is tried again here.
class RawFile final : public AlignedAccessFile {
public:
    /// Makes a file of exactly `bytes` bytes, or takes the one of that name with what it holds, and takes the space from
    /// the disk, so that a full disk is found now and not in the middle of the work. After a failure the disk is as it was
    /// before, except that a longer file of that name may have been cut.
    RawFile(std::uint64_t bytes, const std::string& path_, std::uint32_t alignment_bits_, bool raw_,
            zvp::platform::FileSystem& system = zvp::platform::file_system());

    RawFile(const std::string& path_, std::uint32_t alignment_bits_, FileMode mode, bool raw_,
            zvp::platform::FileSystem& system = zvp::platform::file_system());

    /// Closes the file by keep_on_destroy.
    ~RawFile() override;

    bool is_open() const { return handle.is_open(); }

    /// Whether the constructor made the file.
    bool made_file() const { return created; }

    /// Moves `length` bytes and returns how many came. Fewer, at the end of the file: FileException if `throw_on_short`.
    /// InvalidParametersException for a closed file or a misaligned transfer.
    std::size_t load(std::uint64_t offset, void* buffer, std::size_t length, bool throw_on_short);
    std::size_t store(std::uint64_t offset, const void* buffer, std::size_t length, bool throw_on_short);

    std::size_t load(std::uint64_t offset, void* buffer, std::size_t length,
                     std::span<std::uint32_t> checksums) override;
    std::size_t store(std::uint64_t offset, const void* buffer, std::size_t length,
                      std::span<std::uint32_t> checksums) override;

    /// Cuts or lengthens the file; new bytes are zeros.
    void set_size(std::uint64_t bytes);

    /// Nothing for a file that really is unbuffered.
    void flush() override;

    /// Closes the file and keeps it, or removes it from the disk. Faults are warnings.
    void close(bool keep);

    /// Closes the file and gives it a length of any number of bytes, which is on the disk at the end.
    void close_and_set_size(std::uint64_t bytes);

    void rename(const std::string& new_path, bool read_only) override;

    void set_keep_on_destroy(bool keep) override { keep_on_destroy = keep; }

    bool keep_on_destroy = true;
    const bool raw;

private:
    zvp::platform::OpenedFile open(const std::string& new_path, bool write, bool create);
    void lengthen(std::uint64_t bytes);
    int settle();
    void close_or_warn(const std::string& old_path, int error);

    FileHandle handle;
    bool writable = false;
    bool created = false;
    bool unbuffered = false;
};

} // namespace FileIO
