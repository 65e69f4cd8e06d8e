#pragma once
// What bulk files have in common, with or without checksums.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace FileIO {

/// A file that is read and written by aligned transfers at absolute offsets. One thread at a time uses an object.
class AlignedAccessFile {
public:
    AlignedAccessFile(const AlignedAccessFile&) = delete;
    AlignedAccessFile& operator=(const AlignedAccessFile&) = delete;
    virtual ~AlignedAccessFile() = default;

    /// Puts what was written to the disk. Raises FileException.
    virtual void flush() = 0;

    /// Gives the file a new name, in place of a file that has it already, and opens it again for reading, or for reading
    /// and writing. What was written is on the disk before the name changes. Raises FileException; the object is then
    /// closed, unless the data couldn't be put to the disk, and the file keeps the old name or has the new one.
    virtual void rename(const std::string& new_path, bool read_only) = 0;

    /// Moves `length` bytes at `offset` from or to the file: all of them, or FileException is raised. The address, the
    /// offset and the length are multiples of 2^alignment_bits. `checksums`: scratch for one value a sector, at least
    /// length >> alignment_bits of them, where the file has checksums. Returns `length`.
    virtual std::size_t load(std::uint64_t offset, void* buffer, std::size_t length,
                             std::span<std::uint32_t> checksums) = 0;
    virtual std::size_t store(std::uint64_t offset, const void* buffer, std::size_t length,
                              std::span<std::uint32_t> checksums) = 0;

    /// Whether the destructor leaves the file on the disk; true unless told otherwise.
    virtual void set_keep_on_destroy(bool keep) = 0;

    /// Raises InvalidParametersException for the first that isn't a multiple of the sector: the address, the offset, the
    /// length.
    void check_alignment(const void* buffer, std::uint64_t offset, std::uint64_t length) const;

    const std::uint32_t alignment_bits;
    std::string path; // empty when closed

protected:
    explicit AlignedAccessFile(std::uint32_t alignment_bits_) : alignment_bits(alignment_bits_) {}
};

} // namespace FileIO
