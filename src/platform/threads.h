#pragma once
// What a thread may ask of the system for itself.

#include <cstddef>
#include <memory>
#include <vector>

namespace zvp::platform {

/// Numbers of the cores that this process may run on, ascending. Never empty.
const std::vector<unsigned>& usable_cores();

/// Binds the calling thread to one core. Returns 0, or errno.
int bind_thread_to_core(unsigned core);

/// Gives the calling thread a stack of its own for fault handlers, so that a stack overflow still leaves a
/// crash record. Held by every thread that the program starts, for as long as it runs.
class FaultStack {
public:
    FaultStack();
    ~FaultStack();
    FaultStack(const FaultStack&) = delete;
    FaultStack& operator=(const FaultStack&) = delete;

private:
    static constexpr std::size_t bytes = 65'536;
    std::unique_ptr<std::byte[]> stack;
};

} // namespace zvp::platform
