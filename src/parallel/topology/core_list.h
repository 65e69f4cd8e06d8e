#pragma once
// Lists of core numbers as the screens show them and as a user types them.

#include <cstddef>
#include <set>
#include <string>
#include <string_view>

namespace zvp {

/// Core numbers, from 0 over the whole machine.
using CoreSet = std::set<unsigned>;

/// The ranges of consecutive numbers, such as "0-3 5 8-9 ": a blank behind each, lines of at most `width` columns that
/// begin with `indent` blanks, a line feed at the end. A range that is wider than a line has one of its own. An empty set
/// is "(none)".
std::string core_list_text(const CoreSet& cores, std::size_t indent, std::size_t width);

/// Prints the list with `label` in place of the first line's indent.
void print_core_list(std::string_view label, const CoreSet& cores, std::size_t width);

struct CoreRange {
    unsigned first, last;
};

/// Reads "first-last", or one number. ParseException if `text` is anything else or the last is below the first; numbers
/// beyond the type become the largest.
CoreRange parse_core_range(std::string_view text);

} // namespace zvp
