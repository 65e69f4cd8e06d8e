#pragma once
// What this binary is: version, build, and what was chosen when it was compiled.

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace zvp {

/// The version number, " Build ", the build number.
std::string version_text();

/// The largest memory, in bytes, that a memory setting accepts: chosen at compile time by ZORVANE_MEMORY_CAP.
std::uint64_t memory_setting_cap();

/// Names and values of the compilation options.
std::vector<std::pair<std::string, std::string>> compilation_options();

} // namespace zvp
