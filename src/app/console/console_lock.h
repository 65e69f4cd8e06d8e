#pragma once
// The console lock: a status refresh, the crash filter and whoever prints from two threads hold it.

#include <atomic>

namespace zvp {

/// A mutex that a signal handler may take: it knows its owner, so a fault inside a status refresh doesn't wait
/// for itself. Meets the standard's BasicLockable.
class ConsoleMutex {
public:
    void lock() noexcept;
    void unlock() noexcept;

    /// For the crash filter: waits at most `milliseconds`, since the owner may be what crashed, and tells whether it got
    /// the lock. A thread that owns it already doesn't get it, and doesn't wait. Async-signal-safe.
    bool try_lock_in_fault(unsigned milliseconds) noexcept;

private:
    std::atomic<long> owner{0}; // thread number, 0 when free
};

ConsoleMutex& console_mutex();

} // namespace zvp
