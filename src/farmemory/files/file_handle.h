#pragma once
// The owner of an open file.

#include "platform/file_system.h"

#include <utility>

namespace FileIO {

/// Closed, or one open file of `system()`. The destructor closes it and tells no fault; who wants to know calls close().
class FileHandle {
public:
    explicit FileHandle(zvp::platform::FileSystem& system_, int file_ = -1) : owner(&system_), file(file_) {}
    FileHandle(FileHandle&& other) noexcept : owner(other.owner), file(std::exchange(other.file, -1)) {}
    FileHandle& operator=(FileHandle&& other) noexcept {
        std::swap(owner, other.owner);
        std::swap(file, other.file);
        return *this;
    }
    ~FileHandle() { close(); }

    bool is_open() const { return file >= 0; }
    int number() const { return file; }
    zvp::platform::FileSystem& system() const { return *owner; }

    /// Closed behind this in any case. Returns 0, or errno.
    int close() { return is_open() ? owner->close(std::exchange(file, -1)) : 0; }

private:
    zvp::platform::FileSystem* owner;
    int file;
};

} // namespace FileIO
