#pragma once
// Options that the computing actions share: threads, memory, disks.

#include "app/notation/command_line.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zorvane {

/// What the command line asks for; what it leaves open is the session's default.
struct ResourceRequest {
    bool swap_mode = false;
    std::optional<std::string> allocator;            // keyword
    std::optional<std::string> framework;            // keyword
    std::optional<std::uint32_t> task_decomposition; // 1 .. zvp::max_task_decomposition
    std::optional<std::uint64_t> memory;             // bytes; swap mode only
    std::optional<std::uint64_t> bytes_per_seek;     // swap mode only
    std::optional<std::string> far_memory;           // keyword of the array; swap mode only
    std::vector<std::string> far_memory_paths;
    std::string swap_option; // the first one that only swap mode has
};

/// Handlers of -MA, -PF, -TD, -M, -minIO and -swap.
using ResourceHandler = void (*)(ResourceRequest&, CommandLine::CommandLine&);

/// For the end of the options: raises InvalidParametersException, "Option -M is not supported for this mode.", where one
/// needs swap mode and it isn't chosen.
void check_swap_options(const ResourceRequest& request);

void take_allocator(ResourceRequest& request, CommandLine::CommandLine& line);
void take_framework(ResourceRequest& request, CommandLine::CommandLine& line);
void take_task_decomposition(ResourceRequest& request, CommandLine::CommandLine& line);
void take_memory(ResourceRequest& request, CommandLine::CommandLine& line);
void take_bytes_per_seek(ResourceRequest& request, CommandLine::CommandLine& line);
void take_far_memory(ResourceRequest& request, CommandLine::CommandLine& line);

} // namespace zorvane
