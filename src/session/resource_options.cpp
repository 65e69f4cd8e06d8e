#include "session/resource_options.h"

#include "app/failure/exceptions.h"
#include "app/notation/nearest_word.h"
#include "app/notation/typed_values.h"
#include "parallel/memory/allocator_registry.h"
#include "parallel/tasks/parallelization_settings.h"

#include <algorithm>

namespace zorvane {

namespace {

/// Remembers an option that only swap mode has: the mode may come behind it.
void note_swap_option(ResourceRequest& request, const CommandLine::CommandLine& line) {
    if (request.swap_option.empty()) request.swap_option = line.key();
}

} // namespace

void check_swap_options(const ResourceRequest& request) {
    if (!request.swap_mode && !request.swap_option.empty())
        throw zvp::InvalidParametersException("", "Option " + request.swap_option + " is not supported for this mode.");
}

void take_allocator(ResourceRequest& request, CommandLine::CommandLine& line) {
    CommandLine::with_hint(line.value(), zvp::allocator_registry().names(),
                           [&] { zvp::make_allocator(line.value()); }); // refuses a name that isn't one
    request.allocator = line.take_value();
}

void take_framework(ResourceRequest& request, CommandLine::CommandLine& line) {
    CommandLine::with_hint(line.value(), zvp::framework_registry().names(),
                           [&] { zvp::make_framework_config(line.value()); }); // refuses a name that isn't one
    request.framework = line.take_value();
}

void take_task_decomposition(ResourceRequest& request, CommandLine::CommandLine& line) {
    request.task_decomposition = zvp::checked_task_decomposition(CommandLine::read_u32(line.take_value()));
}

void take_memory(ResourceRequest& request, CommandLine::CommandLine& line) {
    note_swap_option(request, line);
    request.memory = CommandLine::read_bytes(line.take_value());
}

void take_bytes_per_seek(ResourceRequest& request, CommandLine::CommandLine& line) {
    note_swap_option(request, line);
    constexpr std::uint64_t lowest = 4096, highest = (std::uint64_t{1} << 31) - 1;
    request.bytes_per_seek = std::clamp(CommandLine::read_bytes(line.take_value()), lowest, highest);
}

void take_far_memory(ResourceRequest& request, CommandLine::CommandLine& line) {
    note_swap_option(request, line);
    if (line.value() != "raid0" && line.value() != "raid3")
        throw zvp::InvalidParametersException("", "Unrecognized mode: " + line.value());
    request.far_memory = line.take_value();
    while (!line.at_end()) request.far_memory_paths.push_back(line.take_parameter());
    if (request.far_memory_paths.empty()) throw zvp::InvalidParametersException("", "Invalid RaidFile configuration.");
}

} // namespace zorvane
