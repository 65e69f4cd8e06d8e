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

    /// For the crash filter: waits at most `milliseconds` and goes on all the same; a second lock by the owner
    /// returns at once. Async-signal-safe.
    void lock_in_fault(unsigned milliseconds) noexcept;

private:
    std::atomic<long> owner{0}; // thread number, 0 when free
};

ConsoleMutex& console_mutex();

} // namespace zvp
