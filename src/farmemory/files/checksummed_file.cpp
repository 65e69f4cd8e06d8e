#include "farmemory/files/checksummed_file.h"

#include "farmemory/files/file_faults.h"
#include "farmemory/files/sector_checksum.h"

#include <algorithm>
#include <bit>
#include <cerrno>

namespace FileIO {

using zvp::platform::FileSystem;
using zvp::platform::MovedBytes;

static_assert(std::endian::native == std::endian::little); // checksums are stored as they stand in memory

namespace {

constexpr std::size_t largest_piece = (std::size_t{64} << 20) / sizeof(std::uint32_t); // values in one transfer

std::uint64_t rounded_up(std::uint64_t bytes, std::uint32_t alignment_bits) {
    const std::uint64_t unit = std::max<std::uint64_t>(4096, std::uint64_t{1} << alignment_bits);
    return (bytes + unit - 1) / unit * unit;
}

std::uint64_t sectors_of(std::uint64_t bytes, std::uint32_t alignment_bits) {
    return (bytes + (std::uint64_t{1} << alignment_bits) - 1) >> alignment_bits;
}

std::string sidecar(const std::string& path) { return path + ".checksums"; }

FileMode existing(FileMode mode) {
    if (mode == FileMode::create_empty)
        throw zvp::InvalidParametersException("ChecksummedFile()", "A file without a size can't be created.");
    return mode;
}

/// The first `count` values, if there are so many.
std::span<std::uint32_t> required(const char* function, std::span<std::uint32_t> values, std::size_t count) {
    if (values.size() < count)
        throw zvp::BufferTooSmallException(function, values.size_bytes(), count * sizeof(std::uint32_t));
    return values.first(count);
}

void check_pointer(const char* function, std::uint64_t first_sector, const std::string& path) {
    if (first_sector > INT64_MAX / sizeof(std::uint32_t))
        throw_file_fault(function, "Unable to set file pointer.", path, EINVAL);
}

/// move(first sector, values) for all values, at most 64 MiB at a time.
template <class Value, class Move>
void move_in_pieces(const char* function, const std::string& path, FaultDirection direction, std::uint64_t first_sector,
                    std::span<Value> values, Move&& move) {
    check_pointer(function, first_sector, path);
    const bool reading = direction == FaultDirection::read;
    for (std::size_t done = 0; done < values.size();) {
        const std::span<Value> piece = values.subspan(done, std::min(largest_piece, values.size() - done));
        const MovedBytes moved = move((first_sector + done) * sizeof(std::uint32_t), piece);
        if (moved.error != 0)
            throw_file_fault(function, reading ? "pread() failed." : "pwrite() failed.", path, moved.error, direction);
        if (moved.bytes < piece.size_bytes())
            throw FileException(function,
                                (reading ? "Incomplete Read: " : "Incomplete Write: ") + std::to_string(moved.bytes)
                                    + " / " + std::to_string(piece.size_bytes()),
                                path, 0);
        done += piece.size();
    }
}

} // namespace

ChecksummedFile::ChecksummedFile(const std::string& path_, std::uint32_t alignment_bits_, FileMode mode, bool raw,
                                 std::uint32_t seed_, FileSystem& system)
    : AlignedAccessFile(alignment_bits_),
      data(path_, alignment_bits_, existing(mode), raw, system),
      checksums(sidecar(path_), false, mode == FileMode::read, system),
      seed(seed_),
      owner(system) {
    path = path_;
}

ChecksummedFile::ChecksummedFile(std::uint64_t bytes, const std::string& path_, std::uint32_t alignment_bits_, bool raw,
                                 std::uint32_t seed_, void* buffer, std::size_t buffer_bytes, FileSystem& system)
    : AlignedAccessFile(alignment_bits_),
      data(rounded_up(bytes, alignment_bits_), path_, alignment_bits_, raw, system),
      checksums(sectors_of(bytes, alignment_bits_) * sizeof(std::uint32_t), sidecar(path_), false, system),
      seed(seed_),
      owner(system) {
    path = path_;
    try {
        const std::span scratch(static_cast<std::uint32_t*>(buffer), buffer_bytes / sizeof(std::uint32_t));
        required("ChecksummedFile()", scratch, 1);
        fill_checksums(sectors_of(bytes, alignment_bits), scratch);
    } catch (...) {
        data.keep_on_destroy = !data.made_file();
        close_pair();
        throw;
    }
}

ChecksummedFile::~ChecksummedFile() { close_pair(); }

void ChecksummedFile::close_pair() {
    const bool keep = data.keep_on_destroy || !data.is_open();
    const std::string name = checksums.path();
    data.close(keep);
    if (checksums.close() != 0) warn_of_file("ChecksummedFile::close(): Unable to close file.", name);
    if (!keep && owner.remove(name) != 0) warn_of_file("ChecksummedFile::close(): Unable to delete file.", name);
}

void ChecksummedFile::fill_checksums(std::uint64_t sectors, std::span<std::uint32_t> buffer) {
    buffer = buffer.first(std::min<std::uint64_t>(sectors, buffer.size()));
    std::ranges::fill(buffer, no_checksum);
    for (std::uint64_t done = 0; done < sectors;) {
        const std::size_t count = std::min<std::uint64_t>(sectors - done, buffer.size());
        store_checksums("ChecksummedFile()", done, buffer.first(count));
        done += count;
    }
}

void ChecksummedFile::load_checksums(std::uint64_t first_sector, std::span<std::uint32_t> values) {
    move_in_pieces("ChecksummedFile::load()", checksums.path(), FaultDirection::read, first_sector, values,
                   [&](std::uint64_t offset, std::span<std::uint32_t> piece) {
                       return checksums.load(offset, piece.data(), piece.size_bytes());
                   });
}

void ChecksummedFile::store_checksums(const char* function, std::uint64_t first_sector,
                                      std::span<const std::uint32_t> values) {
    move_in_pieces(function, checksums.path(), FaultDirection::write, first_sector, values,
                   [&](std::uint64_t offset, std::span<const std::uint32_t> piece) {
                       return checksums.store(offset, piece.data(), piece.size_bytes());
                   });
}

void ChecksummedFile::check_sectors(std::uint64_t offset, const void* buffer,
                                    std::span<const std::uint32_t> expected) const {
    const std::uint64_t* words = static_cast<const std::uint64_t*>(buffer);
    for (std::size_t i = 0; i < expected.size(); ++i) {
        if (expected[i] == no_checksum) continue;
        if (sector_checksum(seed, words + i * sector_words(), sector_words()) == expected[i]) continue;
        const std::uint64_t begin = offset + (std::uint64_t{i} << alignment_bits);
        throw FileException("ChecksummedFile::load()",
                            "Checksum Mismatch: Data Corruption at Offset [" + std::to_string(begin) + ", "
                                + std::to_string(begin + (std::uint64_t{1} << alignment_bits)) + ")",
                            path, 0);
    }
}

std::size_t ChecksummedFile::load(std::uint64_t offset, void* buffer, std::size_t length,
                                  std::span<std::uint32_t> scratch) {
    const std::span values = required("ChecksummedFile::load()", scratch, length >> alignment_bits);
    const std::size_t loaded = data.load(offset, buffer, length, true);
    load_checksums(offset >> alignment_bits, values);
    check_sectors(offset, buffer, values);
    return loaded;
}

std::size_t ChecksummedFile::store(std::uint64_t offset, const void* buffer, std::size_t length,
                                   std::span<std::uint32_t> scratch) {
    const std::span values = required("ChecksummedFile::store()", scratch, length >> alignment_bits);
    const std::size_t stored = data.store(offset, buffer, length, true);
    const std::uint64_t* words = static_cast<const std::uint64_t*>(buffer);
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = sector_checksum(seed, words + i * sector_words(), sector_words());
    store_checksums("ChecksummedFile::store()", offset >> alignment_bits, values);
    return stored;
}

void ChecksummedFile::flush() {
    data.flush();
    flush_checksums("ChecksummedFile::flush()");
}

void ChecksummedFile::flush_checksums(const char* function) {
    if (!checksums.is_open()) return;
    if (const int error = checksums.flush())
        throw_file_fault(function, "fsync() failed.", checksums.path(), error, FaultDirection::write);
}

// Both files are on the disk before the first name changes.
void ChecksummedFile::rename(const std::string& new_path, bool read_only) {
    if (data.is_open()) flush_checksums("ChecksummedFile::rename()");
    try {
        data.rename(new_path, read_only);
    } catch (...) {
        path = data.path;
        throw;
    }
    path = data.path;
    checksums.rename(sidecar(new_path), read_only);
}

} // namespace FileIO
