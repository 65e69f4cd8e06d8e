#pragma once

#include "parallel/memory/residency.h"

#include <cstdint>
#include <string>
#include <vector>

namespace zvp {

/// What an allocation really got. Sizes are in bytes.
struct AllocationRecord {
    std::uint64_t total_bytes = 0;
    std::uint64_t large_bytes = 0;
    std::uint64_t locked_bytes = 0;
    std::uint64_t large_page_size = 0; // 0 if not known
    NodeBytes nodes;
    std::vector<std::string> warnings;
    bool lock_refused = false; // by the limit on locked memory, and large pages don't make up for it

    /// One string for each item, for reports of many lines: locked part, large pages, the three fullest nodes.
    std::vector<std::string> item_lines() const;

    /// All in one line, with the spread over the nodes: "8.00 GiB  (locked, 2.00 MiB pages, spread: 99.8%/2)".
    std::string one_line() const;

    /// How evenly the bytes lie on the nodes, from 0 to 1 (all alike): 1 - sqrt(v n) / T, with T the sum over the n
    /// nodes and v their sample variance. One node is even; so is none.
    double spread() const;
};

} // namespace zvp
