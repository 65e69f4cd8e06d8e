#pragma once

#include "app/console/status.h"
#include "platform/memory.h"

#include <cstdint>

namespace zvp {

/// Warns the user, who may break off, if `bytes` bytes are more than the machine has or can give now.
void check_physical_memory(StatusSink& sink, std::uint64_t bytes,
                           const platform::PhysicalMemory& machine = platform::physical_memory());

} // namespace zvp
