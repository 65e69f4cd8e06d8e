#include "platform/topology.h"

#include "platform/file.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <map>
#include <set>
#include <system_error>

namespace zvp::platform {

namespace {

constexpr unsigned largest_number = 1u << 20;

std::optional<unsigned> take_number(std::string_view& text) {
    unsigned value;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || value > largest_number) return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return value;
}

bool take(std::string_view& text, char c) {
    if (text.empty() || text.front() != c) return false;
    text.remove_prefix(1);
    return true;
}

std::optional<std::vector<unsigned>> read_number_list(const std::string& path) {
    std::string content;
    if (read_whole_file(path, content) != 0) return std::nullopt;
    return parse_number_list(content);
}

std::set<unsigned> node_numbers(const std::string& folder) {
    std::set<unsigned> numbers;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        const std::string name = entry->path().filename();
        std::string_view rest = name;
        if (!rest.starts_with("node")) continue;
        rest.remove_prefix(4);
        const std::optional<unsigned> number = take_number(rest);
        if (number && rest.empty()) numbers.insert(*number);
    }
    return numbers;
}

/// From core to node.
std::map<unsigned, unsigned> read_nodes(const std::string& folder) {
    std::map<unsigned, unsigned> nodes;
    for (const unsigned node : node_numbers(folder)) {
        const auto cores = read_number_list(folder + "/node" + std::to_string(node) + "/cpulist");
        if (!cores) continue;
        for (const unsigned core : *cores) nodes.emplace(core, node);
    }
    return nodes;
}

std::vector<unsigned> online_cores(const std::string& path, const std::vector<unsigned>& usable) {
    const auto online = read_number_list(path);
    if (!online) return usable;
    std::vector<unsigned> both;
    std::set_intersection(usable.begin(), usable.end(), online->begin(), online->end(), std::back_inserter(both));
    return both.empty() ? usable : both;
}

} // namespace

std::optional<std::vector<unsigned>> parse_number_list(std::string_view list) {
    while (!list.empty() && list.back() == '\n') list.remove_suffix(1);
    std::set<unsigned> numbers;
    while (!list.empty()) {
        const std::optional<unsigned> first = take_number(list);
        const std::optional<unsigned> last = take(list, '-') ? take_number(list) : first;
        if (!first || !last || *last < *first) return std::nullopt;
        for (unsigned number = *first; number <= *last; ++number) numbers.insert(number);
        if (!list.empty() && (!take(list, ',') || list.empty())) return std::nullopt;
    }
    return std::vector<unsigned>(numbers.begin(), numbers.end());
}

MachineTopology read_topology(const std::string& root, const std::vector<unsigned>& usable) {
    const std::string folder = root + "/sys/devices/system";
    const std::map<unsigned, unsigned> nodes = read_nodes(folder + "/node");
    MachineTopology::Group group{0, {}};
    bool any_node = false;
    for (const unsigned core : online_cores(folder + "/cpu/online", usable)) {
        const auto found = nodes.find(core);
        group.cores.push_back({core, found == nodes.end() ? std::nullopt : std::optional(found->second)});
        any_node |= found != nodes.end();
    }
    if (!any_node)
        for (MachineTopology::Core& core : group.cores) core.node = 0;
    return {{std::move(group)}};
}

const MachineTopology& machine_topology() {
    static const MachineTopology topology = read_topology("", usable_cores());
    return topology;
}

} // namespace zvp::platform
