#pragma once
// The action "stress": the component stress tester.

#include "app/notation/command_line.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace StressTest {

struct StressRequest {
    std::optional<std::uint64_t> memory;           // bytes over all threads, at most zvp::memory_cap
    std::optional<std::uint32_t> seconds_per_test; // 1 .. max_seconds
    std::optional<std::uint32_t> seconds_total;    // 0 (no limit) .. max_seconds
    std::set<std::string> tests;                   // tags; none named is all of them
};

inline constexpr std::uint32_t max_seconds = 1'000'000;

/// For stop_unbuilt().
inline constexpr std::string_view action_name = "The Component Stress Tester (action \"stress\")";

const CommandLine::OptionTable<StressRequest>& stress_options();

void stress_action(CommandLine::CommandLine& line);

/// The tester's menu.
void stress_menu();

} // namespace StressTest
