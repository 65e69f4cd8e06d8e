#pragma once
// The action "bench": the benchmark computation of Pi.

#include "session/resource_options.h"

#include <cstdint>
#include <optional>
#include <string>

namespace zorvane {

struct BenchRequest : ResourceRequest {
    std::optional<std::uint64_t> decimal_digits; // of the size that was named
    std::optional<std::string> output_path;
    std::optional<bool> output_enabled;
};

/// The options and every size name.
const CommandLine::OptionTable<BenchRequest>& bench_options();

/// Without parameters the benchmark's menu; else options, one of them a size.
void bench_action(CommandLine::CommandLine& line);

/// The benchmark's menu.
void bench_menu();

} // namespace zorvane
