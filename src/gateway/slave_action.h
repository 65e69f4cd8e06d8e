#pragma once
// The action "slave": another program drives this one over TCP.

#include "app/notation/command_line.h"

#include <cstdint>

namespace zorvane {

struct SlaveRequest {
    std::uint16_t port = 30'000;
    bool json = true; // else the notation
    bool allow_remote = false;
    bool print_traffic = false;
};

const CommandLine::OptionTable<SlaveRequest>& slave_options();

/// The protocol version, which must be 0, then options.
void slave_action(CommandLine::CommandLine& line);

} // namespace zorvane
