#include "session/memory_check.h"

#include "app/console/number_forms.h"
#include "app/failure/exceptions.h"

#include <string>

namespace zvp {

std::string memory_obstacle(std::uint64_t bytes, const platform::PhysicalMemory& machine) {
    if (machine.total == 0 || bytes <= machine.total) return "";
    return "There is insufficient physical memory.\n\n    Memory Needed:    " + format_bytes(bytes)
           + "\n    Physical Memory:  " + format_bytes(machine.total);
}

void check_physical_memory(StatusSink& sink, std::uint64_t bytes, const platform::PhysicalMemory& machine) {
    if constexpr (sizeof(void*) == 4) {
        if (bytes >= std::uint64_t{1} << 31)
            throw InvalidParametersException("", "64-bit is required to use more than 2GB of memory.");
    }
    const auto warn = [&](const std::string& text) {
        sink.pause_warning(text
                           + "\n\nInsufficient memory may lead to virtual memory thrashing which can cause severe\n"
                             "performance degradation and/or system unresponsiveness.");
    };
    if (machine.total != 0 && bytes > machine.total) {
        warn("There is insufficient physical memory.");
    } else if (machine.available != 0 && bytes > machine.available) {
        warn("There is insufficient available physical memory.");
    }
}

void check_disk_space(StatusSink& sink, std::uint64_t bytes, const std::string& path,
                      std::optional<std::uint64_t> free_bytes) {
    if (!free_bytes || bytes <= *free_bytes) return;
    sink.pause_warning("There is insufficient disk space for the digits.\n\n    Path:           "
                       + (path.empty() ? "<Default Path>" : path) + "\n    Space Needed:   " + format_bytes(bytes)
                       + "\n    Free Space:     " + format_bytes(*free_bytes)
                       + "\n\nThe digits will be computed, but their files can't be written as a whole. Free some\n"
                         "space, or choose another path (option -o).");
}

} // namespace zvp
