#include "parallel/topology/topology.h"

#include "app/console/console.h"
#include "app/console/text_width.h"
#include "app/failure/exceptions.h"

#include <algorithm>
#include <string>
#include <utility>

namespace zvp {

namespace {

constexpr std::size_t print_width = 60;

std::string padded(std::size_t number) { return pad_left(std::to_string(number), 2); }

} // namespace

NumaMap::NumaMap(const platform::MachineTopology& machine) {
    print_line("Parsing NUMA -> Core Mappings...");
    unsigned number = 0;
    for (const platform::MachineTopology::Group& group : machine.groups) {
        for (const platform::MachineTopology::Core& core : group.cores) {
            if (core.node) {
                node_by_core.emplace(number, *core.node);
                cores_by_node[*core.node].insert(number);
            } else {
                print_labelc("Unable to read NUMA node for core", std::to_string(number));
                print_line();
            }
            ++number;
        }
    }
    for (const auto& [node, cores] : cores_by_node)
        print_core_list("    Node " + padded(node) + ":  ", cores, print_width);
}

std::optional<unsigned> NumaMap::find(unsigned core) const {
    const auto found = node_by_core.find(core);
    return found == node_by_core.end() ? std::nullopt : std::optional(found->second);
}

GroupMap::GroupMap(const platform::MachineTopology& machine, const CoreMap& cores) {
    print_line("Parsing Processor Group -> Core Mappings...");
    for (const platform::MachineTopology::Group& group : machine.groups) {
        ProcessorMask mask;
        for (const platform::MachineTopology::Core& core : group.cores) mask.set(core.bit);
        ranked.push_back({group.number, SchedulingGroup(mask, group.number, cores)});
        print_core_list("    Group " + padded(group.number) + ":  ", ranked.back().cores.cores(), print_width);
    }
}

std::size_t GroupMap::rank(std::uint16_t group) const {
    const auto found =
        std::find_if(ranked.begin(), ranked.end(), [group](const Entry& entry) { return entry.number == group; });
    return found == ranked.end() ? 0 : static_cast<std::size_t>(found - ranked.begin());
}

Topology::Topology(const platform::MachineTopology& machine) : cores(machine), nodes(machine), groups(machine, cores) {}

const Topology& topology() {
    static const Topology machine(platform::machine_topology());
    return machine;
}

const CoreMap& core_map() { return topology().cores; }

unsigned core_to_node(unsigned core, const Topology& machine) {
    const std::optional<unsigned> node = machine.nodes.find(core);
    if (!node) throw InvalidParametersException("core_to_node()", "Invalid core id: " + std::to_string(core));
    return *node;
}

std::vector<SchedulingGroup> core_set_to_groups(const CoreSet& cores, const CoreMap& map) {
    std::map<unsigned, SchedulingGroup> by_rank;
    for (const unsigned core : cores) {
        const CoreHandle* handle = map.find(core);
        if (!handle)
            throw InvalidParametersException("core_set_to_groups()", "Core " + std::to_string(core) + " not found.");
        by_rank.try_emplace(handle->group_rank, map).first->second |= core;
    }
    std::vector<SchedulingGroup> groups;
    for (auto& [rank, group] : by_rank) groups.push_back(std::move(group));
    return groups;
}

SchedulingGroup node_to_group(unsigned node, const Topology& machine) {
    const auto found = machine.nodes.nodes().find(node);
    if (found == machine.nodes.nodes().end()) return SchedulingGroup(machine.cores);
    const std::vector<SchedulingGroup> groups = core_set_to_groups(found->second, machine.cores);
    return *std::max_element(groups.begin(), groups.end(),
                             [](const auto& a, const auto& b) { return a.core_count() < b.core_count(); });
}

void check_processor_groups(const platform::MachineTopology& machine) {
    const auto& groups = machine.groups;
    if (std::all_of(groups.begin(), groups.end(),
                    [&](const auto& group) { return group.cores.size() == groups.front().cores.size(); }))
        return;
    print_line("Warning: Imbalanced processor groups detected.", 'R');
    print_line("This may lead to suboptimal performance.");
    set_color('w');
    for (const auto& group : groups)
        print_line("    Group " + padded(group.number) + ":  " + padded(group.cores.size()) + " cores");
    print_line();
}

} // namespace zvp
