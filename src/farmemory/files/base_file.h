#pragma once
// Small files: a path and a handle.

#include "farmemory/files/file_handle.h"
#include "platform/file_system.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace FileIO {

/// A small file that stays open. Opening and creating don't give up: a fault is told, then the user may mend it and a new
/// try follows (UserRetry), since a run of many hours is worth a prompt. Written through to the disk.
class BaseFile {
public:
    /// Opens a file that exists, for reading or for reading and writing. `quiet` leaves out the printed exception.
    explicit BaseFile(const std::string& path_, bool quiet = false, bool read_only = true,
                      zvp::platform::FileSystem& system = zvp::platform::file_system());

    /// Makes a file, or takes the one of that name and what it holds, and sets its length; for reading and writing.
    BaseFile(std::uint64_t bytes, const std::string& path_, bool quiet = false,
             zvp::platform::FileSystem& system = zvp::platform::file_system());

    BaseFile(BaseFile&& other) noexcept;
    BaseFile& operator=(BaseFile&& other) noexcept;

    const std::string& path() const { return file_path; } // empty when closed
    bool is_open() const { return !file_path.empty(); }

    /// Closed behind this. Returns 0, or errno.
    int close();

    /// Moves bytes at `offset`; an error is errno's value. Fewer bytes without one: the file ended.
    zvp::platform::MovedBytes load(std::uint64_t offset, void* data, std::size_t bytes);
    zvp::platform::MovedBytes store(std::uint64_t offset, const void* data, std::size_t bytes);

    /// Puts what was written to the disk. Returns 0, or errno.
    int flush();

    /// As AlignedAccessFile::rename(), in one try.
    void rename(const std::string& new_path, bool read_only = true);

private:
    int open_once(const std::string& path, bool read_only);
    int create_once(const std::string& path, std::uint64_t bytes);

    std::string file_path;
    FileHandle handle;
};

} // namespace FileIO
