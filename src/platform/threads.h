#pragma once
// What a thread may ask of the system for itself.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace zvp::platform {

/// Numbers of the cores that this process may run on, ascending. Never empty.
const std::vector<unsigned>& usable_cores();

/// Cores of one processor group, by their bit numbers there. This platform has the one group 0, in which a core's bit
/// is its number.
struct ThreadAffinity {
    std::uint16_t group = 0;
    std::vector<unsigned> bits; // ascending

    bool operator==(const ThreadAffinity&) const = default;
};

/// Lets the calling thread run on these cores only. The system leaves out those that the process may not use. Returns
/// 0, or errno: EINVAL if none is left or the group doesn't exist.
int set_thread_affinity(const ThreadAffinity& affinity);

/// Reads where the calling thread may run. Returns 0, or errno.
int read_thread_affinity(ThreadAffinity& affinity);

/// Binds the calling thread to one core of group 0. Returns 0, or errno.
int bind_thread_to_core(unsigned core);

/// Where the calling thread runs at this moment.
struct ProcessorPlace {
    std::uint16_t group;
    unsigned bit;
};
ProcessorPlace current_processor();

/// Sets the calling thread's nice value. Returns 0, or errno.
int set_thread_nice(int nice);

/// Rounds of looking whether a short wait is over before a thread goes to sleep, with a spin_pause() behind each: about
/// as long as it takes to put a thread to sleep and to wake it, so that a wait costs at most twice what it must.
/// On a Zen 4 bench/parallel/dispatch_bench gives 25 ns for a round (spin), 17 us for all, and 9 us for a wake-up (wake),
/// to which falling asleep is added.
inline constexpr unsigned spin_rounds = 700;

/// Tells the core that this thread only waits.
inline void spin_pause() { __builtin_ia32_pause(); }

/// Gives the calling thread a stack of its own for fault handlers, so that a stack overflow still leaves a
/// crash record. Held by every thread that the program starts, for as long as it runs. Without memory for it the thread
/// goes on without.
class FaultStack {
public:
    FaultStack();
    ~FaultStack();
    FaultStack(const FaultStack&) = delete;
    FaultStack& operator=(const FaultStack&) = delete;

private:
    struct Storage; // the stack, and the one that the thread had before
    std::unique_ptr<Storage> storage;
};

} // namespace zvp::platform
