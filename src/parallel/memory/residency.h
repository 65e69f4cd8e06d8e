#pragma once
// Where the pages of a region lie.

#include "parallel/tasks/parallel_framework.h"
#include "platform/memory.h"

#include <cstddef>
#include <cstdint>
#include <map>

namespace zvp {

/// Bytes by NUMA node.
using NodeBytes = std::map<std::uint32_t, std::uint64_t>;

/// The unit in which memory is placed and asked about.
inline constexpr std::size_t node_page_bytes = 4096;

/// The bytes of [p, p + bytes) on each node. Partial pages at the ends count by their bytes in the region; a page of
/// which the system tells nothing doesn't count. Cut into tasks as touch_in_parallel().
NodeBytes count_node_bytes(const ParallelContext& context, platform::MemorySystem& system, const std::byte* p,
                           std::size_t bytes);

} // namespace zvp
