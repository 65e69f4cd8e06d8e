#pragma once

#include "app/notation/node.h"
#include "parallel/topology/core_list.h"
#include "parallel/topology/core_map.h"
#include "platform/threads.h"

#include <cstddef>
#include <cstdint>

namespace zvp {

/// A set of cores of one processor group: what a thread can be bound to. Empty, it stands for a thread that isn't bound.
/// The mask always has the bits of the cores.
class SchedulingGroup {
public:
    /// An empty set of cores of this machine.
    SchedulingGroup() = default;

    /// An empty set of cores of `map`, which must outlive the set.
    explicit SchedulingGroup(const CoreMap& map) : core_source(&map) {}

    /// The cores of a mask. A bit without a core is left out with a warning.
    SchedulingGroup(const ProcessorMask& mask, std::uint16_t group, const CoreMap& map = core_map());

    const ProcessorMask& mask() const { return group_mask; }
    std::uint16_t group() const { return group_number; } // meaningful if the set isn't empty
    const CoreSet& cores() const { return core_numbers; }
    std::size_t core_count() const { return core_numbers.size(); }
    bool empty() const { return core_numbers.empty(); }

    /// Adds, toggles a core. InvalidParametersException if it doesn't exist or stands in another group than the cores of
    /// the set.
    SchedulingGroup& operator|=(unsigned core);
    SchedulingGroup& operator^=(unsigned core);

    /// Takes all cores out.
    void clear();

    /// The numbers of the cores as integers, and back. Reading fails like operator|=.
    Array to_array() const;
    static SchedulingGroup from_array(const Array& numbers, const CoreMap& map = core_map());

    /// Prints the group and the mask, without a line feed.
    void print() const;

    /// Binds the calling thread to the set; an empty set changes nothing. Returns 0, or errno.
    int bind_thread() const;

    platform::ThreadAffinity affinity() const { return {group_number, group_mask.bits()}; }

    /// Whether both hold the same cores.
    bool operator==(const SchedulingGroup& other) const { return core_numbers == other.core_numbers; }

    /// The map that the numbers come from.
    const CoreMap& map() const { return core_source ? *core_source : core_map(); }

private:
    /// The handle of a core that can join the set.
    const CoreHandle& joinable(unsigned core, const char* function) const;

    ProcessorMask group_mask;
    std::uint16_t group_number = 0;
    CoreSet core_numbers;
    const CoreMap* core_source = nullptr; // null: this machine's, which is built when it is first asked
};

} // namespace zvp
