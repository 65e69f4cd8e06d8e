#include "farmemory/files/raw_file.h"

#include "farmemory/files/file_faults.h"
#include "farmemory/files/path_operations.h"

#include <algorithm>
#include <cerrno>

namespace FileIO {

using zvp::platform::FileCaching;
using zvp::platform::FileSystem;
using zvp::platform::MovedBytes;
using zvp::platform::OpenedFile;

namespace {

/// The words in which a transfer tells its faults.
struct Transfer {
    const char* function;
    const char* failed;
    const char* incomplete;
    FaultDirection direction;
};

constexpr Transfer load_words{"RawFile::load()", "pread() failed.", "Incomplete Read: ", FaultDirection::read};
constexpr Transfer store_words{"RawFile::store()", "pwrite() failed.", "Incomplete Write: ", FaultDirection::write};

/// move(done, bytes) moves the next bytes; the parts are as large as transfer_chunk() says.
template <class Move>
std::size_t move_in_chunks(const RawFile& file, FileSystem& system, const Transfer& words, std::uint64_t offset,
                           std::size_t length, bool throw_on_short, Move&& move) {
    if (offset > INT64_MAX || length > INT64_MAX - offset)
        throw_file_fault(words.function, words.failed, file.path, EINVAL);
    const std::size_t chunk = transfer_chunk(length, file.alignment_bits, system);
    std::size_t done = 0;
    while (done < length) {
        const std::size_t bytes = std::min(chunk, length - done);
        const MovedBytes moved = move(done, bytes);
        if (moved.error != 0) throw_file_fault(words.function, words.failed, file.path, moved.error, words.direction);
        done += moved.bytes;
        if (moved.bytes < bytes) break;
    }
    if (done < length && throw_on_short)
        throw FileException(words.function, words.incomplete + std::to_string(done) + " / " + std::to_string(length),
                            file.path, 0);
    return done;
}

} // namespace

std::size_t transfer_chunk(std::uint64_t bytes, std::uint32_t alignment_bits, FileSystem& system) {
    if (bytes <= smallest_chunk) return bytes;
    const std::uint64_t half = system.available_memory() / 2 >> alignment_bits << alignment_bits;
    return std::min({std::max(half, smallest_chunk), bytes, largest_chunk});
}

RawFile::RawFile(std::uint64_t bytes, const std::string& path_, std::uint32_t alignment_bits_, bool raw_,
                 FileSystem& system)
    : AlignedAccessFile(alignment_bits_), raw(raw_), handle(system) {
    const OpenedFile opened = open(path_, true, true);
    if (opened.error != 0) throw_file_fault("RawFile()", "Unable to create file.", path_, opened.error);
    created = opened.created;
    std::uint64_t length_before = 0;
    system.length(handle.number(), length_before);
    try {
        lengthen(bytes);
    } catch (const FileException&) {
        if (created)
            system.remove(path_);
        else if (length_before < bytes)
            system.set_length(handle.number(), length_before);
        throw;
    }
}

RawFile::RawFile(const std::string& path_, std::uint32_t alignment_bits_, FileMode mode, bool raw_, FileSystem& system)
    : AlignedAccessFile(alignment_bits_), raw(raw_), handle(system) {
    const bool create = mode == FileMode::create_empty;
    const char* message = create ? "Unable to create file." : "Unable to open file.";
    const OpenedFile opened = open(path_, mode != FileMode::read, create);
    int error = opened.error;
    if (error == 0 && create) error = system.set_length(handle.number(), 0);
    if (error != 0) throw_file_fault("RawFile()", message, path_, error);
    created = opened.created;
}

RawFile::~RawFile() { close(keep_on_destroy); }

OpenedFile RawFile::open(const std::string& new_path, bool write, bool create) {
    FileSystem& system = handle.system();
    const FileCaching caching =
        raw ? FileCaching::direct : (write ? FileCaching::write_through : FileCaching::buffered);
    const OpenedFile opened = system.open(new_path, {write, create, caching});
    if (opened.error != 0) return opened;
    handle = FileHandle(system, opened.file);
    path = new_path;
    writable = write;
    unbuffered = raw && !opened.direct_refused;
    if (opened.direct_refused)
        warn_of_file_once(system.told_direct_refusal,
                          "This file system has no raw I/O. Buffered access is used instead.\n", new_path);
    return opened;
}

/// A length without space behind it would fail in the middle of the work; a full disk counts as a failed length.
/// Elsewhere missing space is a matter of speed.
void RawFile::lengthen(std::uint64_t bytes) {
    set_size(bytes);
    FileSystem& system = handle.system();
    const int error = system.allocate(handle.number(), bytes);
    if (error == ENOSPC || error == EDQUOT || error == EFBIG)
        throw_file_fault("RawFile::set_size()", "fallocate() failed.", path, error);
    if (error != 0)
        warn_of_file_once(system.told_allocation_fault,
                          "fallocate() has failed. Expect performance degradation.\n"
                          "Another file system may take the space at once.\n",
                          path);
}

std::size_t RawFile::load(std::uint64_t offset, void* buffer, std::size_t length, bool throw_on_short) {
    if (!is_open()) throw zvp::InvalidParametersException(load_words.function, "File isn't open.");
    check_alignment(buffer, offset, length);
    FileSystem& system = handle.system();
    return move_in_chunks(
        *this, system, load_words, offset, length, throw_on_short, [&](std::size_t done, std::size_t bytes) {
            return system.read_at(handle.number(), static_cast<char*>(buffer) + done, bytes, offset + done);
        });
}

std::size_t RawFile::store(std::uint64_t offset, const void* buffer, std::size_t length, bool throw_on_short) {
    if (!is_open()) throw zvp::InvalidParametersException(store_words.function, "File isn't open.");
    check_alignment(buffer, offset, length);
    FileSystem& system = handle.system();
    return move_in_chunks(
        *this, system, store_words, offset, length, throw_on_short, [&](std::size_t done, std::size_t bytes) {
            return system.write_at(handle.number(), static_cast<const char*>(buffer) + done, bytes, offset + done);
        });
}

std::size_t RawFile::load(std::uint64_t offset, void* buffer, std::size_t length, std::span<std::uint32_t>) {
    return load(offset, buffer, length, true);
}

std::size_t RawFile::store(std::uint64_t offset, const void* buffer, std::size_t length, std::span<std::uint32_t>) {
    return store(offset, buffer, length, true);
}

void RawFile::set_size(std::uint64_t bytes) {
    constexpr const char* function = "RawFile::set_size()";
    if (!is_open()) throw zvp::InvalidParametersException(function, "File isn't open.");
    if (bytes > INT64_MAX) throw_file_fault(function, "ftruncate() failed.", path, EINVAL);
    if (const int error = handle.system().set_length(handle.number(), bytes))
        throw_file_fault(function, "ftruncate() failed.", path, error);
}

/// Data that passed by the system's memory can still stand in the disk's own cache, and where they lie in the file
/// system's journal: before a file is renamed or let go for good, unbuffered ones are synced too.
int RawFile::settle() { return writable ? handle.system().sync(handle.number()) : 0; }

void RawFile::flush() {
    if (!is_open() || unbuffered) return;
    if (const int error = settle())
        throw_file_fault("RawFile::flush()", "fsync() failed.", path, error, FaultDirection::write);
}

void RawFile::close(bool keep) {
    if (!is_open()) return;
    const int unsettled = keep ? settle() : 0;
    const int unclosed = handle.close();
    if (unsettled != 0 || unclosed != 0) warn_of_file("RawFile::close(): Unable to close file.", path);
    if (!keep && handle.system().remove(path) != 0) warn_of_file("RawFile::close(): Unable to delete file.", path);
    path.clear();
}

void RawFile::close_and_set_size(std::uint64_t bytes) {
    constexpr const char* function = "RawFile::close_and_set_size()";
    constexpr const char* unclosed = "RawFile::close_and_set_size(): Unable to close file.";
    if (!is_open()) throw FileException(function, "File isn't open.", path, 0);
    FileSystem& system = handle.system();
    const std::string closed_path = std::exchange(path, {});
    if (handle.close() != 0) warn_of_file(unclosed, closed_path);
    const OpenedFile opened = system.open(closed_path, {true, false, FileCaching::write_through});
    if (opened.error != 0) throw_file_fault(function, "Unable to open file.", closed_path, opened.error);
    FileHandle exact(system, opened.file);
    if (bytes > INT64_MAX) throw_file_fault(function, "ftruncate() failed.", closed_path, EINVAL);
    if (const int error = system.set_length(exact.number(), bytes))
        throw_file_fault(function, "ftruncate() failed.", closed_path, error);
    if (const int error = system.sync(exact.number()))
        throw_file_fault(function, "fsync() failed.", closed_path, error, FaultDirection::write);
    if (exact.close() != 0) warn_of_file(unclosed, closed_path);
}

void RawFile::rename(const std::string& new_path, bool read_only) {
    constexpr const char* function = "RawFile::rename()";
    if (!is_open()) throw FileException(function, "File isn't open.", new_path, 0);
    if (const int error = settle()) throw_file_fault(function, "fsync() failed.", path, error, FaultDirection::write);
    const std::string old_path = std::exchange(path, {});
    if (handle.close() != 0) warn_of_file("RawFile::close(): Unable to close file.", old_path);
    rename_or_throw(function, old_path, new_path, handle.system());
    const OpenedFile opened = open(new_path, !read_only, false);
    if (opened.error != 0) throw_file_fault("RawFile()", "Unable to open file.", new_path, opened.error);
}

} // namespace FileIO
