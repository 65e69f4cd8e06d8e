#pragma once
// Named tables that are filled once, at a visible place.

#include "app/console/console.h"

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zvp {

/// A map from name to `Row` that remembers the order of its rows. A name that comes twice is a fatal stop: it
/// is a mistake in the program's own tables.
template <class Row>
class Registry {
public:
    /// `duplicate_text`: what the fatal stop says.
    Registry(std::string_view duplicate_text, std::vector<std::pair<std::string, Row>> rows) {
        for (auto& [name, row] : rows) {
            if (!by_name.emplace(name, std::move(row)).second) fatal_stop(duplicate_text);
            ordered_names.push_back(name);
        }
    }

    /// The row of that name, or null.
    const Row* find(std::string_view name) const {
        const auto found = by_name.find(name);
        return found == by_name.end() ? nullptr : &found->second;
    }

    const std::vector<std::string>& names() const { return ordered_names; }

private:
    std::map<std::string, Row, std::less<>> by_name;
    std::vector<std::string> ordered_names;
};

} // namespace zvp
