#pragma once

#include <functional>
#include <string_view>
#include <vector>

namespace zorvane {

struct MenuItem {
    std::string_view name;
    char color;
    std::function<void()> run;
};

/// Shows the items, reads an index and runs that item.
///
/// With `run_all` the menu serves for tests: index 0 is "Run All", which runs every item in turn, takes an
/// exception of an item as its failure, and tells how many failed.
void run_item_menu(std::string_view title, const std::vector<MenuItem>& items, bool run_all = false);

} // namespace zorvane
