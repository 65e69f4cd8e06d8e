#include "session/memory_check.h"

#include "app/failure/exceptions.h"

#include <string>

namespace zvp {

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

} // namespace zvp
