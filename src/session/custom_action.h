#pragma once
// The action "custom": compute a constant.

#include "app/notation/node.h"
#include "session/resource_options.h"

#include <cstdint>
#include <optional>
#include <string>

namespace zorvane {

struct CustomRequest : ResourceRequest {
    std::string constant;                // its name on the command line
    std::optional<std::string> argument; // after the name's ":"; may be empty
    std::optional<std::string> algorithm;
    std::optional<std::uint64_t> decimal_digits;
    std::optional<std::uint64_t> hexadecimal_digits; // 0 is none
    std::optional<std::string> output_path;
    std::optional<bool> output_enabled;
    std::optional<std::int32_t> compression; // 0 text, -1 one compressed file, N > 0 digits per compressed file
    std::optional<bool> verify_output;
};

/// The options behind the constant's name.
const CommandLine::OptionTable<CustomRequest>& custom_options();

/// Without parameters the menu of custom computations; else a constant's name and its options.
void custom_action(CommandLine::CommandLine& line);

/// The menu of custom computations.
void custom_menu();

/// Runs what the object "CustomCompute" of a configuration file describes.
void run_custom_config(const zvp::Object& settings);

} // namespace zorvane
