#pragma once
// A file system whose calls fail when a test wants it.

#include "platform/file_system.h"

#include <algorithm>
#include <cerrno>
#include <deque>
#include <functional>
#include <map>
#include <vector>

namespace test {

enum class FileCall { open, direct, lock, close, read, write, set_length, allocate, sync, rename, remove };

/// The real files, but each call first takes the next of its planned errors: 0 lets it through, an errno value makes it fail.
class FakeFiles : public zvp::platform::FileSystem {
public:
    /// The next calls of that kind.
    void plan(FileCall call, std::initializer_list<int> errors) { planned[call] = errors; }

    std::uint64_t available_memory() override { return available; }
    void sleep(unsigned seconds) override {
        slept.push_back(seconds);
        if (on_sleep) on_sleep();
    }

    std::map<FileCall, unsigned> calls;
    std::vector<unsigned> slept;
    std::function<void()> on_sleep;
    std::size_t most_bytes = ~std::size_t{0}; // of one transfer
    bool imaginary_transfers = false;         // succeed, and touch neither memory nor disk
    std::vector<std::size_t> transfers;
    std::uint64_t available = std::uint64_t{4} << 30;

protected:
    int try_open(const std::string& path, const zvp::platform::FileOpening& opening, bool create_new) override {
        const int error = next(FileCall::open);
        return error ? -error : FileSystem::try_open(path, opening, create_new);
    }
    int try_set_direct(int file) override {
        const int error = next(FileCall::direct);
        return error ? -error : FileSystem::try_set_direct(file);
    }
    int try_lock(int file, bool exclusive) override {
        const int error = next(FileCall::lock);
        return error ? -error : FileSystem::try_lock(file, exclusive);
    }
    int try_close(int file) override {
        const int error = next(FileCall::close);
        const int result = FileSystem::try_close(file);
        return error ? -error : result;
    }
    std::int64_t try_read(int file, void* data, std::size_t bytes, std::uint64_t offset) override {
        if (const int error = next(FileCall::read)) return -error;
        transfers.push_back(bytes);
        bytes = std::min(bytes, most_bytes);
        return imaginary_transfers ? static_cast<std::int64_t>(bytes) : FileSystem::try_read(file, data, bytes, offset);
    }
    std::int64_t try_write(int file, const void* data, std::size_t bytes, std::uint64_t offset) override {
        if (const int error = next(FileCall::write)) return -error;
        bytes = std::min(bytes, most_bytes);
        return bytes == 0 ? 0 : FileSystem::try_write(file, data, bytes, offset);
    }
    int try_set_length(int file, std::uint64_t bytes) override {
        const int error = next(FileCall::set_length);
        return error ? -error : FileSystem::try_set_length(file, bytes);
    }
    int try_allocate(int file, std::uint64_t bytes) override {
        const int error = next(FileCall::allocate);
        return error ? -error : FileSystem::try_allocate(file, bytes);
    }
    int try_sync(int file) override {
        const int error = next(FileCall::sync);
        return error ? -error : FileSystem::try_sync(file);
    }
    int try_rename(const std::string& old_path, const std::string& new_path) override {
        const int error = next(FileCall::rename);
        return error ? -error : FileSystem::try_rename(old_path, new_path);
    }
    int try_remove(const std::string& path) override {
        const int error = next(FileCall::remove);
        return error ? -error : FileSystem::try_remove(path);
    }

private:
    int next(FileCall call) {
        ++calls[call];
        std::deque<int>& errors = planned[call];
        if (errors.empty()) return 0;
        const int error = errors.front();
        errors.pop_front();
        return error;
    }

    std::map<FileCall, std::deque<int>> planned;
};

} // namespace test
