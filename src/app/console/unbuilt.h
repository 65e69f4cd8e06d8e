#pragma once
// What this version lacks, in the same words wherever it is asked for.

#include <string>
#include <string_view>

namespace zvp {

/// "`what` isn't part of version V."; without `what` the words after it, for the cell of a table.
std::string unbuilt_text(std::string_view what);

/// Prints the line, where a menu can go on.
void print_unbuilt(std::string_view what);

/// Prints the line and ends the program with code 1. It stands wherever later work joins, so that nothing pretends to
/// run.
[[noreturn]] void stop_unbuilt(std::string_view what);

} // namespace zvp
