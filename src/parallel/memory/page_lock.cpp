#include "parallel/memory/page_lock.h"

#include <cerrno>
#include <mutex>
#include <optional>

namespace zvp {

namespace {

std::size_t lock_or_split(platform::MemorySystem& system, std::byte* p, std::size_t bytes) {
    if (system.lock_pages(p, bytes) == 0) return bytes;
    const std::optional<bool> raised = system.raise_lock_limit();
    if (!raised) return 0;
    const int error = system.lock_pages(p, bytes);
    if (error == 0) return bytes;
    if (error != ENOMEM || !*raised || bytes < smallest_split_lock) return 0;
    const std::size_t half = bytes / 2;
    const std::size_t locked = lock_or_split(system, p, half);
    return locked + lock_or_split(system, p + half, bytes - half);
}

} // namespace

std::size_t lock_region(platform::MemorySystem& system, std::byte* p, std::size_t bytes) {
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
    return lock_or_split(system, p, bytes);
}

} // namespace zvp
