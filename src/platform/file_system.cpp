#include "platform/file_system.h"

#include "platform/file.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <limits>
#include <sys/file.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

namespace zvp::platform {

namespace {

constexpr std::uint64_t longest_file = std::numeric_limits<off_t>::max();

template <class Result>
Result or_error(Result result) {
    return result < 0 ? -errno : result;
}

/// Repeats a call that gives -EINTR.
template <class Call>
auto uninterrupted(Call&& call) {
    for (;;) {
        const auto result = call();
        if (result != -EINTR) return result;
    }
}

int open_flags(const FileOpening& opening) {
    int flags = (opening.write ? O_RDWR : O_RDONLY) | O_CLOEXEC | O_NOCTTY;
    flags |= O_NONBLOCK; // a pipe without a partner doesn't hold us; files don't care
    if (opening.caching == FileCaching::write_through) flags |= O_DSYNC;
    return flags;
}

/// What may stand behind an opened path: files and disks.
int check_kind(int file) {
    struct stat status;
    if (fstat(file, &status) != 0) return errno;
    if (S_ISDIR(status.st_mode)) return EISDIR;
    return S_ISREG(status.st_mode) || S_ISBLK(status.st_mode) ? 0 : ESPIPE;
}

bool within_file(std::size_t bytes, std::uint64_t offset) {
    return offset <= longest_file && bytes <= longest_file - offset;
}

} // namespace

FileSystem& file_system() {
    static FileSystem system;
    return system;
}

// A file that this call makes is told from one that was there: a caller that fails later removes only what it made.
int FileSystem::open_any(const std::string& path, const FileOpening& opening, bool& created) {
    for (int round = 0;; ++round) { // the file may come and go between the two looks
        created = false;
        int file = -EEXIST;
        if (opening.create) {
            file = uninterrupted([&] { return try_open(path, opening, true); });
            created = file >= 0;
        }
        if (file != -EEXIST) return file;
        file = uninterrupted([&] { return try_open(path, opening, false); });
        if (!opening.create || file != -ENOENT || round == 3) return file;
    }
}

int FileSystem::claim(int file, bool exclusive) {
    const int error = -uninterrupted([&] { return try_lock(file, exclusive); });
    return error == EWOULDBLOCK ? EBUSY : 0; // other errors: the file system has no locks
}

// Direct transfers are switched on behind the opening: some file systems that refuse them there have made the file first.
int FileSystem::prepare(OpenedFile& opened, const FileOpening& opening) {
    if (const int error = check_kind(opened.file)) return error;
    if (const int error = claim(opened.file, opening.write)) return error;
    if (opening.caching != FileCaching::direct) return 0;
    const int error = -uninterrupted([&] { return try_set_direct(opened.file); });
    opened.direct_refused = error == EINVAL || error == EOPNOTSUPP;
    return opened.direct_refused ? 0 : error;
}

OpenedFile FileSystem::open(const std::string& path, const FileOpening& opening) {
    OpenedFile opened;
    opened.file = open_any(path, opening, opened.created);
    opened.error = opened.file < 0 ? -opened.file : prepare(opened, opening);
    if (opened.error == 0) return opened;
    if (opened.file >= 0) close(opened.file);
    return {-1, opened.error};
}

int FileSystem::close(int file) {
    const int error = -try_close(file);
    return error == EINTR ? 0 : error; // the number is free all the same
}

// A count short of what was asked for isn't the end yet: signals and the system's own limit cut transfers too. Behind
// the end a direct file can't be asked again, since the place isn't a sector's.
MovedBytes FileSystem::read_at(int file, void* data, std::size_t bytes, std::uint64_t offset) {
    if (!within_file(bytes, offset)) return {0, EINVAL};
    MovedBytes moved;
    while (moved.bytes < bytes) {
        const std::uint64_t place = offset + moved.bytes;
        const std::int64_t got = uninterrupted(
            [&] { return try_read(file, static_cast<char*>(data) + moved.bytes, bytes - moved.bytes, place); });
        if (got < 0) return {moved.bytes, static_cast<int>(-got)};
        moved.bytes += static_cast<std::size_t>(got);
        std::uint64_t end = 0;
        if (got == 0 || (moved.bytes < bytes && length(file, end) == 0 && offset + moved.bytes >= end)) break;
    }
    return moved;
}

MovedBytes FileSystem::write_at(int file, const void* data, std::size_t bytes, std::uint64_t offset) {
    if (!within_file(bytes, offset)) return {0, EINVAL};
    MovedBytes moved;
    while (moved.bytes < bytes) {
        const std::int64_t written = uninterrupted([&] {
            return try_write(file, static_cast<const char*>(data) + moved.bytes, bytes - moved.bytes,
                             offset + moved.bytes);
        });
        if (written < 0) return {moved.bytes, static_cast<int>(-written)};
        if (written == 0) break;
        moved.bytes += static_cast<std::size_t>(written);
    }
    return moved;
}

int FileSystem::set_length(int file, std::uint64_t bytes) {
    return -uninterrupted([&] { return try_set_length(file, bytes); });
}

int FileSystem::length(int file, std::uint64_t& bytes) {
    struct stat status;
    if (fstat(file, &status) != 0) return errno;
    bytes = static_cast<std::uint64_t>(status.st_size);
    return 0;
}

int FileSystem::allocate(int file, std::uint64_t bytes) {
    if (bytes == 0) return 0;
    return -uninterrupted([&] { return try_allocate(file, bytes); });
}

int FileSystem::sync(int file) {
    const int error = -uninterrupted([&] { return try_sync(file); });
    return error == EINVAL || error == EROFS || error == ENOSYS || error == EOPNOTSUPP ? 0 : error; // nothing to sync
}

int FileSystem::rename(const std::string& old_path, const std::string& new_path) {
    return -try_rename(old_path, new_path);
}

int FileSystem::remove(const std::string& path) { return -try_remove(path); }

void FileSystem::sync_folder_of(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    const int file = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (file < 0) return;
    fsync(file);
    ::close(file);
}

std::uint64_t FileSystem::available_memory() {
    std::string content;
    if (read_whole_file("/proc/meminfo", content) != 0) return 0;
    const std::size_t place = content.find("MemAvailable:");
    unsigned long long kilobytes = 0;
    if (place == std::string::npos || std::sscanf(content.c_str() + place, "MemAvailable: %llu kB", &kilobytes) != 1)
        return 0;
    return std::uint64_t{kilobytes} * 1024;
}

void FileSystem::sleep(unsigned seconds) {
    timespec rest{static_cast<time_t>(seconds), 0};
    while (nanosleep(&rest, &rest) != 0 && errno == EINTR) {
    }
}

int FileSystem::try_open(const std::string& path, const FileOpening& opening, bool create_new) {
    return or_error(::open(path.c_str(), open_flags(opening) | (create_new ? O_CREAT | O_EXCL : 0), 0666));
}

int FileSystem::try_set_direct(int file) {
    const int flags = fcntl(file, F_GETFL);
    return flags < 0 ? -errno : or_error(fcntl(file, F_SETFL, flags | O_DIRECT));
}

int FileSystem::try_lock(int file, bool exclusive) {
    return or_error(flock(file, (exclusive ? LOCK_EX : LOCK_SH) | LOCK_NB));
}

int FileSystem::try_close(int file) { return or_error(::close(file)); }

std::int64_t FileSystem::try_read(int file, void* data, std::size_t bytes, std::uint64_t offset) {
    return or_error<std::int64_t>(pread(file, data, bytes, static_cast<off_t>(offset)));
}

std::int64_t FileSystem::try_write(int file, const void* data, std::size_t bytes, std::uint64_t offset) {
    return or_error<std::int64_t>(pwrite(file, data, bytes, static_cast<off_t>(offset)));
}

int FileSystem::try_set_length(int file, std::uint64_t bytes) {
    return bytes > longest_file ? -EFBIG : or_error(ftruncate(file, static_cast<off_t>(bytes)));
}

int FileSystem::try_allocate(int file, std::uint64_t bytes) {
    return bytes > longest_file ? -EFBIG : or_error(fallocate(file, 0, 0, static_cast<off_t>(bytes)));
}

int FileSystem::try_sync(int file) { return or_error(fdatasync(file)); }

int FileSystem::try_rename(const std::string& old_path, const std::string& new_path) {
    return or_error(::rename(old_path.c_str(), new_path.c_str()));
}

int FileSystem::try_remove(const std::string& path) { return or_error(::unlink(path.c_str())); }

} // namespace zvp::platform
