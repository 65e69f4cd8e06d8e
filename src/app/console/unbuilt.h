#pragma once

#include <string_view>

namespace zvp {

/// Tells in one line that `what` isn't part of this version, where a menu can go on.
void print_unbuilt(std::string_view what);

/// Tells in one line that `what` isn't part of this version, and ends the program with code 1. It stands
/// wherever later work joins, so that nothing pretends to run.
[[noreturn]] void stop_unbuilt(std::string_view what);

} // namespace zvp
