#pragma once
// Interleaving pages over nodes: which task takes which page, and the task itself.

#include "parallel/memory/residency.h"
#include "parallel/tasks/parallel_framework.h"
#include "parallel/tasks/task_queue.h"
#include "platform/memory.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace zvp {

/// Spreads page addresses evenly: one block of MurmurHash3 (Austin Appleby, 2011) over the address's low 32 bits, with
/// seed 0. Pages 4 GiB apart so get the same hash, which leaves the shares of a region as they are.
std::uint32_t page_hash(std::uint64_t address);

/// The queue whose threads are bound to the cores of a node, to all usable ones if the node has none; made when first
/// asked for, ends with the process.
TaskQueue& node_queue(std::uint32_t node);

/// The tasks that fill a committed region: task i provides its share of the pages from node nodes[i].
///
/// A page's place is decided by the rule in force when it is touched first. A task tells the system once that its
/// thread's new pages should come from the node (set_mempolicy), touches its pages, and restores the thread's rule. A
/// rule for the page itself (mbind) gives the same place, but splits the region's mapping around the page: kept, it fails
/// at the 65,530 mappings of a process, 256 MiB for two nodes; taken back behind the touch, the two calls under the
/// process's one lock of mappings make a page four times as dear or more (bench/parallel/memory_bench, place). If the
/// system refuses the rule, the error counts for each of the task's pages, and the pages are provided without one.
class NodeBinder final : public BasicAction {
public:
    /// `p` and `bytes` are multiples of node_page_bytes.
    NodeBinder(platform::MemorySystem& system_, const std::vector<std::uint32_t>& nodes_, bool hashed_, std::byte* p_,
               std::size_t bytes_)
        : system(system_), nodes(nodes_), hashed(hashed_), p(p_), pages(bytes_ / node_page_bytes) {}

    void run(std::uint32_t index) override;

    /// What all tasks found.
    NodeBytes node_bytes;
    std::vector<std::string> warnings;

private:
    class Batch;

    /// Calls take(page) for each page of task `index`.
    template <class Function>
    void for_each_page(std::uint32_t index, Function&& take) const;

    platform::MemorySystem& system;
    const std::vector<std::uint32_t>& nodes;
    const bool hashed;
    std::byte* const p;
    const std::size_t pages;
    std::mutex mutex; // guards the results
};

} // namespace zvp
