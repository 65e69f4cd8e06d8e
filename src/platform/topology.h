#pragma once
// The machine's processors as the system lists them.

#include "platform/threads.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zvp::platform {

/// A plain description: processor groups in ascending order of their numbers, each with its cores in ascending order of
/// their bits.
struct MachineTopology {
    struct Core {
        unsigned bit;                 // in the group's mask
        std::optional<unsigned> node; // NUMA node; nothing if the system doesn't tell
    };
    struct Group {
        std::uint16_t number;
        std::vector<Core> cores;
    };

    std::vector<Group> groups;
};

/// Reads the topology from <root>/sys/devices/system: one group 0 with those of the cores `usable` (ascending) that are
/// online; a core's bit is the system's number for it. Never without a core. What is missing or malformed doesn't count:
/// without a list of online cores all usable ones are online, and if no core belongs to a node, all are on node 0. A core
/// that several nodes claim belongs to the first.
MachineTopology read_topology(const std::string& root, const std::vector<unsigned>& usable);

/// The topology of this machine, read once.
const MachineTopology& machine_topology();

/// The numbers of a list such as "0-3,8", ascending; nothing if it is malformed or holds a number above 2^20.
std::optional<std::vector<unsigned>> parse_number_list(std::string_view list);

} // namespace zvp::platform
