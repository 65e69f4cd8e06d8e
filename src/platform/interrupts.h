#pragma once

namespace zvp::platform {

/// Ctrl-C (SIGINT) while an object of this class lives: the first one is handed to the thread in wait(), and nothing else
/// happens in the thread that the signal met; the next one ends the process, as the first does elsewhere. At most one
/// object at a time; without descriptors to spare, or where the signal was ignored from the start, nothing changes.
class InterruptGate {
public:
    InterruptGate();
    ~InterruptGate();
    InterruptGate(const InterruptGate&) = delete;
    InterruptGate& operator=(const InterruptGate&) = delete;

    /// Waits for Ctrl-C (true) or close() (false).
    bool wait() noexcept;

    /// Ends a wait() of another thread; Ctrl-C is what it was before.
    void close() noexcept;
};

/// For the signal handler: whether the signal was handed on. Async-signal-safe.
bool pass_interrupt(int signal) noexcept;

} // namespace zvp::platform
