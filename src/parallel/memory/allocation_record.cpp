#include "parallel/memory/allocation_record.h"

#include "app/console/number_forms.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace zvp {

namespace {

std::string percentage(std::uint64_t part, std::uint64_t total) {
    return std::to_string(total == 0 ? 0 : part * 100 / total) + "%";
}

/// The items that both forms begin with.
std::vector<std::string> page_items(const AllocationRecord& record) {
    std::vector<std::string> items;
    if (record.locked_bytes >= record.total_bytes && record.locked_bytes != 0) {
        items.push_back("locked");
    } else if (record.locked_bytes != 0) {
        items.push_back(percentage(record.locked_bytes, record.total_bytes) + " locked");
    }
    if (record.large_bytes != 0) {
        const std::string part = record.large_bytes < record.total_bytes
                                     ? percentage(record.large_bytes, record.total_bytes) + " "
                                     : std::string();
        const std::string label = record.large_page_size == 0 ? "large" : format_bytes(record.large_page_size);
        items.push_back(part + label + " pages");
    }
    return items;
}

} // namespace

std::vector<std::string> AllocationRecord::item_lines() const {
    std::vector<std::string> items = page_items(*this);
    std::vector<std::pair<std::uint32_t, std::uint64_t>> by_size(nodes.begin(), nodes.end());
    std::stable_sort(by_size.begin(), by_size.end(), [](const auto& a, const auto& b) { return a.second > b.second; });
    if (by_size.size() > 3) by_size.resize(3);
    for (const auto& [node, bytes] : by_size)
        items.push_back(percentage(std::min(bytes, total_bytes), total_bytes) + " (node " + std::to_string(node) + ")");
    return items;
}

std::string AllocationRecord::one_line() const {
    std::string line = format_bytes(total_bytes) + "  (";
    for (const std::string& item : page_items(*this)) line += item + ", ";
    if (nodes.empty()) return line + "spread: ?)";
    return line + "spread: " + format_fixed(spread() * 100, 1) + "%/" + std::to_string(nodes.size()) + ")";
}

double AllocationRecord::spread() const {
    if (nodes.size() < 2) return 1;
    const double n = static_cast<double>(nodes.size());
    double total = 0;
    for (const auto& entry : nodes) total += static_cast<double>(entry.second);
    if (total == 0) return 1;
    double squares = 0;
    for (const auto& entry : nodes) {
        const double deviation = static_cast<double>(entry.second) - total / n;
        squares += deviation * deviation;
    }
    return std::max(0.0, 1 - std::sqrt(squares / (n - 1) * n) / total);
}

} // namespace zvp
