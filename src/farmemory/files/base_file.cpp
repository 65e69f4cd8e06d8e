#include "farmemory/files/base_file.h"

#include "app/console/console_lock.h"
#include "farmemory/files/file_faults.h"
#include "farmemory/files/path_operations.h"

#include <mutex>

namespace FileIO {

using zvp::platform::FileCaching;
using zvp::platform::FileSystem;
using zvp::platform::MovedBytes;
using zvp::platform::OpenedFile;

namespace {

/// Calls attempt() until it returns 0, with the user's help between the rounds.
template <class Attempt>
void until_mended(const char* message, const std::string& path, bool quiet, FileSystem& system, Attempt&& attempt) {
    UserRetry retry(system);
    while (const int error = attempt()) {
        const FileException exception("RawFile()", zvp::with_system_error(message, error), path, error);
        if (!quiet) {
            const std::lock_guard lock(zvp::console_mutex());
            exception.print();
        }
        retry.wait(std::string(message) + "\nPath: " + path + "\nError Code: " + std::to_string(error) + "\n"
                   + std::string(zvp::platform::system_error_text(error)) + "\n");
    }
}

} // namespace

BaseFile::BaseFile(const std::string& path_, bool quiet, bool read_only, FileSystem& system) : handle(system) {
    until_mended("Unable to open file.", path_, quiet, system, [&] { return open_once(path_, read_only); });
}

BaseFile::BaseFile(std::uint64_t bytes, const std::string& path_, bool quiet, FileSystem& system) : handle(system) {
    until_mended("Unable to create file.", path_, quiet, system, [&] { return create_once(path_, bytes); });
}

BaseFile::BaseFile(BaseFile&& other) noexcept
    : file_path(std::exchange(other.file_path, {})), handle(std::move(other.handle)) {}

BaseFile& BaseFile::operator=(BaseFile&& other) noexcept {
    if (this == &other) return *this;
    handle.close();
    handle = std::move(other.handle);
    file_path = std::exchange(other.file_path, {});
    return *this;
}

int BaseFile::open_once(const std::string& path, bool read_only) {
    FileSystem& system = handle.system();
    const FileCaching caching = read_only ? FileCaching::buffered : FileCaching::write_through;
    const OpenedFile opened = system.open(path, {!read_only, false, caching});
    if (opened.error != 0) return opened.error;
    handle = FileHandle(system, opened.file);
    file_path = path;
    return 0;
}

int BaseFile::create_once(const std::string& path, std::uint64_t bytes) {
    FileSystem& system = handle.system();
    const OpenedFile opened = system.open(path, {true, true, FileCaching::write_through});
    if (opened.error != 0) return opened.error;
    FileHandle fresh(system, opened.file);
    if (const int error = system.set_length(fresh.number(), bytes)) {
        if (opened.created) system.remove(path);
        return error;
    }
    handle = std::move(fresh);
    file_path = path;
    return 0;
}

int BaseFile::close() {
    file_path.clear();
    return handle.close();
}

MovedBytes BaseFile::load(std::uint64_t offset, void* data, std::size_t bytes) {
    return handle.system().read_at(handle.number(), data, bytes, offset);
}

MovedBytes BaseFile::store(std::uint64_t offset, const void* data, std::size_t bytes) {
    return handle.system().write_at(handle.number(), data, bytes, offset);
}

int BaseFile::flush() { return handle.system().sync(handle.number()); }

void BaseFile::rename(const std::string& new_path, bool read_only) {
    constexpr const char* function = "BaseFile::rename()";
    if (!is_open()) throw FileException(function, "File isn't open.", new_path, 0);
    if (const int error = flush())
        throw_file_fault(function, "fsync() failed.", file_path, error, FaultDirection::write);
    const std::string old_path = file_path;
    if (close() != 0) warn_of_file("BaseFile::close(): Unable to close file.", old_path);
    rename_or_throw(function, old_path, new_path, handle.system());
    if (const int error = open_once(new_path, read_only))
        throw_file_fault(function, "Unable to reopen file.", new_path, error);
}

} // namespace FileIO
