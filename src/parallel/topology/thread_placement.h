#pragma once
// Where the calling thread runs, and how urgently. A refusal is a warning that leaves the thread as it was.

#include "parallel/topology/topology.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zvp {

/// Sets the calling thread's priority, from -3 (idle) over 0 (normal) to 3 (time critical), relative to that of the
/// process; other levels act as the nearest. A refusal of level 0, which nobody asks for, is silent.
void set_thread_priority(std::int32_t level);

/// Such as "Above Normal Priority".
std::string_view thread_priority_name(std::int32_t level);

/// Spreads workers over the processor groups of one machine. Only its first failure is told.
class GroupAssigner {
public:
    explicit GroupAssigner(const Topology& machine_) : machine(machine_) {}

    /// Binds the calling thread to all cores of the group of running number `index` modulo the number of groups.
    void assign(std::size_t index);

private:
    const Topology& machine;
    std::atomic<bool> told{false};
};

/// GroupAssigner::assign() on this machine, with one first failure for the process.
void assign_thread_to_group(std::size_t index);

} // namespace zvp
