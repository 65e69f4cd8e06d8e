#pragma once
// How menus show the settings of frameworks and allocators.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zvp {

/// Prints one row: its number, `label`, and the value in the colour.
void print_setting_row(std::uint32_t row, std::string_view label, std::string_view value, char color = 'G');

/// Prints `title` and the names, numbered from 0, and asks for one of the numbers.
std::size_t choose_name(std::string_view title, const std::vector<std::string_view>& names);

/// The key of a registry whose entry the user chooses by its display name.
template <class Registry>
const std::string& choose_key(std::string_view title, const Registry& registry) {
    std::vector<std::string_view> names;
    for (const std::string& key : registry.names()) names.push_back(registry.find(key)->display_name);
    return registry.names()[choose_name(title, names)];
}

} // namespace zvp
