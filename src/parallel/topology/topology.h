#pragma once
// The three maps of the machine's processors. Each prints itself as it is built, and never changes.

#include "parallel/topology/core_map.h"
#include "parallel/topology/scheduling_group.h"
#include "platform/topology.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <vector>

namespace zvp {

/// From core to NUMA node and back. A core of which the system tells no node is in no node, after a warning.
class NumaMap {
public:
    explicit NumaMap(const platform::MachineTopology& machine);

    std::optional<unsigned> find(unsigned core) const;

    /// The nodes that have cores, in ascending order.
    const std::map<unsigned, CoreSet>& nodes() const { return cores_by_node; }

private:
    std::map<unsigned, unsigned> node_by_core;
    std::map<unsigned, CoreSet> cores_by_node;
};

/// The processor groups, each with all its cores. A group may have none.
class GroupMap {
public:
    /// `cores` must outlive the map.
    GroupMap(const platform::MachineTopology& machine, const CoreMap& cores);

    std::size_t size() const { return ranked.size(); }

    struct Entry {
        std::uint16_t number;
        SchedulingGroup cores;
    };

    /// In ascending order of the numbers.
    const std::vector<Entry>& groups() const { return ranked; }

    /// The running number of a group; 0 if there is none of that number.
    std::size_t rank(std::uint16_t group) const;

private:
    std::vector<Entry> ranked;
};

/// The maps of one machine.
class Topology {
public:
    explicit Topology(const platform::MachineTopology& machine);
    Topology(const Topology&) = delete;
    Topology& operator=(const Topology&) = delete;

    const CoreMap cores;
    const NumaMap nodes;
    const GroupMap groups;
};

/// This machine's maps, built and printed at the first call.
const Topology& topology();

/// The node of a core. InvalidParametersException if the core has none.
unsigned core_to_node(unsigned core, const Topology& machine = topology());

/// The cores of each processor group among `cores`, in ascending order of the groups. InvalidParametersException if a
/// core doesn't exist.
std::vector<SchedulingGroup> core_set_to_groups(const CoreSet& cores, const CoreMap& map = core_map());

/// What a thread is bound to that should run on a node: the cores of the node in the group that has most of them, the
/// first such. Empty if the node has no cores or doesn't exist.
SchedulingGroup node_to_group(unsigned node, const Topology& machine = topology());

/// Groups of unequal size are told in a warning; nothing is printed otherwise. Doesn't build the maps.
void check_processor_groups(const platform::MachineTopology& machine = platform::machine_topology());

} // namespace zvp
