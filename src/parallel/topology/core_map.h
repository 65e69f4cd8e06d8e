#pragma once

#include "parallel/topology/processor_mask.h"
#include "platform/topology.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace zvp {

/// How the system names a core.
struct CoreHandle {
    ProcessorMask mask; // one bit
    std::uint16_t group;
    unsigned group_rank; // running number of the group
    unsigned bit;        // in the group
};

/// The flat list of the cores that this process may use: numbered from 0, by group and then by bit. A core's number is
/// its bit only where the process may use every core of a machine of one group.
/// Construction prints what it does.
class CoreMap {
public:
    explicit CoreMap(const platform::MachineTopology& machine);

    std::size_t size() const { return handles.size(); }

    /// The core of that number, or null.
    const CoreHandle* find(unsigned core) const { return core < handles.size() ? &handles[core] : nullptr; }

    /// The number of the core at a bit of a group.
    std::optional<unsigned> find(std::uint16_t group, unsigned bit) const;

private:
    std::vector<CoreHandle> handles;
    std::map<std::pair<std::uint16_t, unsigned>, unsigned> numbers; // by group and bit
};

/// The map of this machine, a part of topology().
const CoreMap& core_map();

} // namespace zvp
