#pragma once

#include "platform/memory.h"

#include <cstddef>

namespace zvp {

/// A region that the system's limit doesn't let be locked as a whole is locked in halves, down to this size.
inline constexpr std::size_t smallest_split_lock = 1'048'576;

/// Keeps as much of [p, p + bytes) in memory as the system allows, and returns how many bytes that are. The process's
/// limit is raised as far as it may be. One caller at a time does this, others wait.
std::size_t lock_region(platform::MemorySystem& system, std::byte* p, std::size_t bytes);

} // namespace zvp
