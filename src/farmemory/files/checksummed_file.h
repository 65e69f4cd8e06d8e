#pragma once
// Bulk files with a checksum for each sector.

#include "farmemory/files/base_file.h"
#include "farmemory/files/raw_file.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace FileIO {

/// A RawFile with a second file beside it, its path and ".checksums", that holds a 32-bit little-endian value for each
/// sector of the data. The value of sector n stands at byte 4 n and starts from `seed`; no_checksum passes any data.
/// The second file is a BaseFile: opening and making it waits for the user after a fault.
class ChecksummedFile final : public AlignedAccessFile {
public:
    /// Opens a pair of files that exists, for FileMode::read or read_write.
    ChecksummedFile(const std::string& path_, std::uint32_t alignment_bits_, FileMode mode, bool raw,
                    std::uint32_t seed_, zvp::platform::FileSystem& system = zvp::platform::file_system());

    /// Makes a pair. The data have `bytes` bytes, rounded up to whole sectors and to multiples of 4096, none of them with
    /// a checksum. `buffer`: scratch of any length from 4 bytes.
    ChecksummedFile(std::uint64_t bytes, const std::string& path_, std::uint32_t alignment_bits_, bool raw,
                    std::uint32_t seed_, void* buffer, std::size_t buffer_bytes,
                    zvp::platform::FileSystem& system = zvp::platform::file_system());

    ~ChecksummedFile() override;

    /// A sector whose data don't give its stored checksum raises FileException with the sector's bytes. Too few
    /// `checksums` raise BufferTooSmallException.
    std::size_t load(std::uint64_t offset, void* buffer, std::size_t length,
                     std::span<std::uint32_t> checksums) override;
    std::size_t store(std::uint64_t offset, const void* buffer, std::size_t length,
                      std::span<std::uint32_t> checksums) override;
    void flush() override;
    void rename(const std::string& new_path, bool read_only) override;
    void set_keep_on_destroy(bool keep) override { data.keep_on_destroy = keep; }

private:
    void fill_checksums(std::uint64_t sectors, std::span<std::uint32_t> buffer);
    void load_checksums(std::uint64_t first_sector, std::span<std::uint32_t> values);
    void store_checksums(const char* function, std::uint64_t first_sector, std::span<const std::uint32_t> values);
    void check_sectors(std::uint64_t offset, const void* buffer, std::span<const std::uint32_t> expected) const;
    void flush_checksums(const char* function);
    void close_pair();
    std::size_t sector_words() const { return (std::size_t{1} << alignment_bits) / 8; }

    RawFile data;
    BaseFile checksums;
    const std::uint32_t seed;
    zvp::platform::FileSystem& owner;
};

} // namespace FileIO
