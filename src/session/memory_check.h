#pragma once

#include "app/console/status.h"
#include "platform/memory.h"

#include <cstdint>
#include <optional>
#include <string>

namespace zvp {

/// Why settings that need `bytes` bytes can't run: the machine has less memory in all. Empty if it has as much.
std::string memory_obstacle(std::uint64_t bytes, const platform::PhysicalMemory& machine = platform::physical_memory());

/// Warns the user, who may break off, if `bytes` bytes are more than the machine has or can give now.
void check_physical_memory(StatusSink& sink, std::uint64_t bytes,
                           const platform::PhysicalMemory& machine = platform::physical_memory());

/// The same for the disk: if `bytes` bytes of digits are more than the folder `path` (empty: the working folder) can take
/// now. `free_bytes`: what it can take; nothing if the system doesn't say.
void check_disk_space(StatusSink& sink, std::uint64_t bytes, const std::string& path,
                      std::optional<std::uint64_t> free_bytes);

} // namespace zvp
