#pragma once
// Machines that tests describe instead of finding them.

#include "parallel/topology/topology.h"

#include <vector>

namespace test {

using zvp::platform::MachineTopology;

/// A machine whose group g has groups[g] cores at the bits from 0 on; nodes[core] is a core's node, -1 for none, and
/// cores beyond the list are on node 0.
inline MachineTopology machine_of(const std::vector<unsigned>& groups, const std::vector<int>& nodes = {}) {
    MachineTopology machine;
    std::size_t core = 0;
    for (std::size_t g = 0; g < groups.size(); ++g) {
        MachineTopology::Group group{static_cast<std::uint16_t>(g), {}};
        for (unsigned bit = 0; bit < groups[g]; ++bit, ++core) {
            const int node = core < nodes.size() ? nodes[core] : 0;
            group.cores.push_back({bit, node < 0 ? std::nullopt : std::optional(static_cast<unsigned>(node))});
        }
        machine.groups.push_back(std::move(group));
    }
    return machine;
}

} // namespace test
