#include "parallel/topology/core_map.h"

#include "app/console/console.h"

namespace zvp {

CoreMap::CoreMap(const platform::MachineTopology& machine) {
    print_line("Parsing Core -> Handle Mappings...");
    for (unsigned rank = 0; rank < machine.groups.size(); ++rank) {
        const platform::MachineTopology::Group& group = machine.groups[rank];
        for (const platform::MachineTopology::Core& core : group.cores) {
            numbers.emplace(std::pair(group.number, core.bit), static_cast<unsigned>(handles.size()));
            handles.push_back({ProcessorMask({core.bit}), group.number, rank, core.bit});
        }
    }
}

std::optional<unsigned> CoreMap::find(std::uint16_t group, unsigned bit) const {
    const auto found = numbers.find({group, bit});
    return found == numbers.end() ? std::nullopt : std::optional(found->second);
}

} // namespace zvp
