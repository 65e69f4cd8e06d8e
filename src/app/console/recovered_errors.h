#pragma once
// Faults of the machine that were found and made good, so that a run of weeks went on. They are told at once and counted: a
// machine that needs this is failing.

#include <cstdint>
#include <string_view>

namespace zvp {

/// Prints the line in red and counts it. From any thread.
void report_recovered_error(std::string_view text);

/// All of this process so far.
std::uint64_t recovered_errors();

} // namespace zvp
