#include "parallel/memory/mmap_allocator.h"

#include "parallel/memory/flag_selector.h"
#include "parallel/memory/page_lock.h"
#include "parallel/memory/touch.h"

#include <bit>

namespace zvp {

struct MmapAllocator::Request {
    const ParallelContext& context;
    unsigned alignment_bits;
    std::size_t bytes;
};

std::unique_ptr<MemoryAllocator> MmapAllocator::from_config(const Object& object) {
    auto allocator = std::make_unique<MmapAllocator>();
    allocator->large_pages = OptionalFlagConfig::load(object, "LargePages");
    allocator->locked_pages = OptionalFlagConfig::load(object, "LockedPages");
    return allocator;
}

bool MmapAllocator::acquire_privileges() const {
    if (large_pages.value == OptionalFlag::disabled && locked_pages.value == OptionalFlag::disabled) return true;
    return acquire_lock_privilege(*system);
}

std::unique_ptr<Allocation> MmapAllocator::allocate(const ParallelContext& context, unsigned alignment_bits,
                                                    std::size_t bytes) const {
    const Request request{context, alignment_bits, bytes};
    std::unique_ptr<Allocation> allocation;
    if (large_pages.value != OptionalFlag::disabled) {
        system->lock_privilege(); // raises the limit, if nobody asked for the privilege before
        allocation = with_large_pages(request, platform::PageKind::large_pool);
        if (!allocation) allocation = with_large_pages(request, platform::PageKind::large_transparent);
    }
    if (!allocation && large_pages.value != OptionalFlag::forced) allocation = with_small_pages(request);
    if (!allocation || !lock(*allocation)) return std::make_unique<Allocation>();
    return allocation;
}

std::unique_ptr<Allocation> MmapAllocator::with_large_pages(const Request& request, platform::PageKind kind) const {
    const std::size_t large = std::bit_floor(system->large_page_size());
    if (large == 0) return nullptr;
    std::unique_ptr<Allocation> allocation = touched(request, large, kind);
    if (!allocation) return nullptr;
    AllocationRecord& record = *allocation->record;
    record.large_page_size = large;
    if (kind == platform::PageKind::large_pool) {
        record.large_bytes = record.locked_bytes = record.total_bytes;
    } else {
        record.large_bytes = system->transparent_large_bytes(allocation->pointer, allocation->bytes);
    }
    const bool enough = record.large_bytes >= record.total_bytes || large_pages.value != OptionalFlag::forced;
    return enough ? std::move(allocation) : nullptr;
}

std::unique_ptr<Allocation> MmapAllocator::with_small_pages(const Request& request) const {
    return touched(request, std::bit_floor(system->page_size()), platform::PageKind::small);
}

std::unique_ptr<Allocation> MmapAllocator::touched(const Request& request, std::size_t unit,
                                                   platform::PageKind kind) const {
    const std::size_t bytes = round_up(request.bytes, unit);
    const std::size_t alignment = mapping_alignment(request.alignment_bits, unit);
    if (bytes == 0 || alignment == 0) return nullptr;
    const platform::Mapping mapping = system->map(bytes, alignment, kind);
    if (!mapping.base) return nullptr;
    auto allocation = std::make_unique<PageAllocation>(*system, mapping, bytes);
    touch_in_parallel(request.context, allocation->pointer, bytes);
    allocation->record = std::make_unique<AllocationRecord>();
    allocation->record->total_bytes = bytes;
    allocation->record->nodes = count_node_bytes(request.context, *system, allocation->pointer, bytes);
    return allocation;
}

bool MmapAllocator::lock(Allocation& allocation) const {
    std::uint64_t& locked = allocation.record->locked_bytes; // pages of the pool are locked already
    if (locked_pages.value == OptionalFlag::disabled || locked == allocation.bytes) return true;
    locked = lock_region(*system, allocation.pointer, allocation.bytes);
    allocation.record->lock_refused = locked < allocation.bytes && allocation.record->large_bytes < allocation.bytes;
    return locked == allocation.bytes || locked_pages.value != OptionalFlag::forced;
}

void MmapAllocator::save(Object& object, bool full) const {
    OptionalFlagSelector::save(large_pages, object, full);
    OptionalFlagSelector::save(locked_pages, object, full);
}

std::uint32_t MmapAllocator::print_menu_rows(std::uint32_t first_row) const {
    OptionalFlagSelector::print_row(large_pages, first_row, "    Large Pages:");
    OptionalFlagSelector::print_row(locked_pages, first_row + 1, "    Lock Pages in Memory:");
    return first_row + 2;
}

void MmapAllocator::menu_select(std::uint32_t row) {
    if (row == 0) OptionalFlagSelector(large_pages).cycle();
    if (row == 1) OptionalFlagSelector(locked_pages).cycle();
}

} // namespace zvp
