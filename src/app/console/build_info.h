#pragma once
// What this binary is: version, build, and what was chosen when it was compiled.

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace zvp {

/// The version number, " Build ", the build number.
std::string version_text();

/// The largest memory, in bytes, that a memory setting accepts: the largest value of a size, or what ZORVANE_MEMORY_CAP
/// chose at compile time. Whether the machine has as much is for the check before a run.
extern const std::uint64_t memory_cap;

/// Names and values of the compilation options.
std::vector<std::pair<std::string, std::string>> compilation_options();

} // namespace zvp
