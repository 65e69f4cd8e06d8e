#pragma once

#include "app/notation/optional_flag.h"
#include "parallel/memory/memory_allocator.h"
#include "parallel/topology/topology.h"

#include <cstdint>
#include <vector>

namespace zvp {

/// Small pages spread over NUMA nodes, each provided by a thread of its node. A node that is listed twice gets twice the
/// share. Nodes that don't exist don't fail: their pages come from anywhere, and the record's warnings tell.
class InterleaveAllocator final : public AllocatorOf<InterleaveAllocator> {
public:
    static constexpr std::string_view own_key = "interleave";
    static constexpr std::string_view name = "Node Interleaving";

    /// All usable nodes of the machine.
    InterleaveAllocator();

    /// Raises InvalidParametersException if the list is empty.
    explicit InterleaveAllocator(std::vector<std::uint32_t> nodes_,
                                 platform::MemorySystem& system_ = platform::memory_system());

    static std::unique_ptr<MemoryAllocator> from_config(const Object& object);

    bool acquire_privileges() const override;
    std::unique_ptr<Allocation> allocate(const ParallelContext& context, unsigned alignment_bits,
                                         std::size_t bytes) const override;
    std::uint32_t print_menu_rows(std::uint32_t first_row) const override;
    void menu_select(std::uint32_t row) override;

    const std::vector<std::uint32_t>& nodes() const { return node_list; }

    bool hashed = true; // else Round-Robin
    OptionalFlagConfig locked_pages{"LockedPages", OptionalFlag::attempt};

private:
    void save(Object& object, bool full) const override;

    /// Lines that aren't a number are asked again.
    void ask_nodes();

    std::vector<std::uint32_t> node_list;
};

/// The nodes of `machine` that have memory for this process, ascending; all of them, after a warning, if none has.
std::vector<std::uint32_t> usable_nodes(const Topology& machine, platform::MemorySystem& system);

} // namespace zvp
