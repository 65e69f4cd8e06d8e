#include "parallel/memory/interleave_allocator.h"

#include "app/console/console.h"
#include "app/console/prompts.h"
#include "app/console/value_parsers.h"
#include "app/failure/exceptions.h"
#include "parallel/memory/flag_selector.h"
#include "parallel/memory/node_binder.h"
#include "parallel/memory/page_lock.h"
#include "parallel/tasks/setting_rows.h"
#include "platform/threads.h"

#include <algorithm>
#include <limits>
#include <system_error>

namespace zvp {

namespace {

/// Runs a task on this thread, which is bound to a node only meanwhile.
void run_here(NodeBinder& binder, std::uint32_t index) {
    platform::ThreadAffinity before;
    const int error = platform::read_thread_affinity(before);
    binder.run(index);
    if (error == 0) platform::set_thread_affinity(before);
}

/// Runs one task for each node on the node's own threads, all at once; here where the system has no thread for it.
void run_on_nodes(NodeBinder& binder, const std::vector<std::uint32_t>& nodes) {
    std::vector<AsyncHandle> handles(nodes.size());
    for (std::uint32_t i = 0; i < nodes.size(); ++i) {
        try {
            node_queue(nodes[i]).dispatch(handles[i], binder, i);
        } catch (const std::system_error&) {
            run_here(binder, i);
        }
    }
    for (AsyncHandle& handle : handles) handle.wait();
    for (AsyncHandle& handle : handles) handle.join();
}

std::vector<std::uint32_t> read_nodes(const Array& array) {
    std::vector<std::uint32_t> nodes;
    for (std::size_t i = 0; i < array.size(); ++i) {
        const std::int64_t node = array.get_integer(i);
        if (node < 0 || node > std::numeric_limits<std::uint32_t>::max())
            throw InvalidParametersException("", "Invalid NUMA node: " + std::to_string(node));
        nodes.push_back(static_cast<std::uint32_t>(node));
    }
    return nodes;
}

std::string list_text(const std::vector<std::uint32_t>& nodes) {
    std::string text;
    for (const std::uint32_t node : nodes) text += (text.empty() ? "" : ", ") + std::to_string(node);
    return text;
}

} // namespace

InterleaveAllocator::InterleaveAllocator() : InterleaveAllocator(usable_nodes(topology(), platform::memory_system())) {}

InterleaveAllocator::InterleaveAllocator(std::vector<std::uint32_t> nodes_, platform::MemorySystem& system_)
    : AllocatorOf(system_), node_list(std::move(nodes_)) {
    if (node_list.empty()) throw InvalidParametersException("", "Node list cannot be empty.");
}

std::unique_ptr<MemoryAllocator> InterleaveAllocator::from_config(const Object& object) {
    OptionalFlagConfig locked = OptionalFlagConfig::load(object, "LockedPages");
    auto allocator = std::make_unique<InterleaveAllocator>(read_nodes(object.get_array("Nodes")));
    allocator->hashed = object.get_boolean("Hashed");
    allocator->locked_pages = std::move(locked);
    return allocator;
}

bool InterleaveAllocator::acquire_privileges() const {
    return locked_pages.value == OptionalFlag::disabled || acquire_lock_privilege(*system);
}

std::unique_ptr<Allocation> InterleaveAllocator::allocate(const ParallelContext&, unsigned alignment_bits,
                                                          std::size_t bytes) const {
    auto failure = std::make_unique<Allocation>();
    const std::size_t unit = system->page_size();
    const std::size_t size = round_up(bytes, unit);
    const std::size_t alignment = mapping_alignment(alignment_bits, unit);
    if (size == 0 || alignment == 0) return failure;
    const platform::Mapping mapping = system->reserve(size, alignment);
    if (!mapping.base) return failure;
    auto allocation = std::make_unique<PageAllocation>(*system, mapping, size);
    // One step for all pages: the pages themselves come when the binders touch them.
    if (system->commit(mapping.data, size) != 0) return failure;

    NodeBinder binder(*system, node_list, hashed, mapping.data, size);
    run_on_nodes(binder, node_list);
    allocation->record = std::make_unique<AllocationRecord>();
    AllocationRecord& record = *allocation->record;
    record.total_bytes = size;
    record.nodes = std::move(binder.node_bytes);
    record.warnings = std::move(binder.warnings);
    if (locked_pages.value == OptionalFlag::disabled) return allocation;
    record.locked_bytes = lock_region(*system, mapping.data, size);
    record.lock_refused = record.locked_bytes < size;
    if (locked_pages.value == OptionalFlag::forced && record.locked_bytes < size) return failure;
    return allocation;
}

void InterleaveAllocator::save(Object& object, bool full) const {
    OptionalFlagSelector::save(locked_pages, object, full);
    Array nodes_array;
    for (const std::uint32_t node : node_list) nodes_array.push_integer(node);
    object.add_array("Nodes", std::move(nodes_array));
    object.add_boolean("Hashed", hashed);
}

std::uint32_t InterleaveAllocator::print_menu_rows(std::uint32_t first_row) const {
    if (topology().nodes.nodes().size() < 2)
        print_line("        (This allocator is useful only when there are multiple NUMA nodes.)");
    print_setting_row(first_row, "    NUMA nodes:", list_text(node_list));
    print_setting_row(first_row + 1, "    Page Mapping:", hashed ? "Hashed" : "Round-Robin");
    OptionalFlagSelector::print_row(locked_pages, first_row + 2, "    Lock Pages in Memory:");
    return first_row + 3;
}

void InterleaveAllocator::menu_select(std::uint32_t row) {
    if (row == 0) ask_nodes();
    if (row == 1) hashed = !hashed;
    if (row == 2) OptionalFlagSelector(locked_pages).cycle();
}

void InterleaveAllocator::ask_nodes() {
    print_line("\n\nEnter NUMA node #'s one-by-one. Enter nothing to stop.");
    print_line("    - Duplicating nodes allow for imbalanced interleaving.");
    print_line("    - Non-existant nodes simply won't bind.");
    std::vector<std::uint32_t> typed;
    for (;;) {
        const std::string line = prompt_line("Node: ", 'T');
        if (line.empty()) break;
        if (line.find_first_not_of("0123456789") == std::string::npos) typed.push_back(parse_u32(line));
    }
    if (!typed.empty()) node_list = std::move(typed);
}

std::vector<std::uint32_t> usable_nodes(const Topology& machine, platform::MemorySystem& system) {
    std::vector<std::uint32_t> all, usable;
    for (const auto& entry : machine.nodes.nodes()) {
        all.push_back(entry.first);
        if (system.node_has_memory(entry.first)) usable.push_back(entry.first);
    }
    if (!usable.empty()) return usable;
    print_warning("Unable to find any usable NUMA nodes. Will attempt to use all of them...");
    if (all.empty()) all.push_back(0); // the system tells of no node
    return all;
}

} // namespace zvp
