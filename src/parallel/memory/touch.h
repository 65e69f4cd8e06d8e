#pragma once
// Writing to fresh memory, so that the system really provides it.

#include "parallel/tasks/parallel_framework.h"

#include <cstddef>
#include <cstdint>

namespace zvp {

/// Fills [p, p + bytes): the first byte is 0x7B and the last 0x40; then word i of the whole aligned 32-bit words gets
/// i^2 * 0xC82B9175 + 0xC857661B, modulo 2^32.
void touch(std::byte* p, std::size_t bytes);

/// How large steps over fresh memory are cut: a quarter of the task decomposition, in equal blocks; no tasks if that is
/// below two or there is no framework.
struct TouchBlocks {
    TouchBlocks(const ParallelContext& context, std::size_t bytes);

    /// Block `index`; the last ones may be empty.
    std::size_t begin(std::uint32_t index) const;
    std::size_t end(std::uint32_t index) const { return begin(index + 1); }

    std::uint32_t tasks;
    std::size_t block;
    std::size_t total;
};

/// touch() on each block, on the workers: their nodes are where the system puts the pages.
void touch_in_parallel(const ParallelContext& context, std::byte* p, std::size_t bytes);

} // namespace zvp
