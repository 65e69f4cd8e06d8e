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
        allocation = from_pool(request);
        if (!allocation) allocation = with_transparent_pages(request);
    }
    if (!allocation && large_pages.value != OptionalFlag::forced) allocation = with_small_pages(request);
    return allocation ? std::move(allocation) : std::make_unique<Allocation>();
}

std::unique_ptr<Allocation> MmapAllocator::from_pool(const Request& request) const {
    const std::size_t large = std::bit_floor(system->large_page_size());
    if (large == 0) return nullptr;
    std::unique_ptr<Allocation> allocation = touched(request, large, platform::PageKind::large_pool);
    if (!allocation) return nullptr;
    AllocationRecord& record = *allocation->record;
    record.large_bytes = record.locked_bytes = record.total_bytes;
    record.large_page_size = large;
    return allocation;
}

std::unique_ptr<Allocation> MmapAllocator::with_transparent_pages(const Request& request) const {
    const std::size_t large = std::bit_floor(system->large_page_size());
    if (large == 0) return nullptr;
    std::unique_ptr<Allocation> allocation = touched(request, large, platform::PageKind::large_transparent);
    if (!allocation) return nullptr;
    AllocationRecord& record = *allocation->record;
    record.large_bytes = system->transparent_large_bytes(allocation->pointer, allocation->bytes);
    record.large_page_size = large;
    if (large_pages.value == OptionalFlag::forced && record.large_bytes < record.total_bytes) return nullptr;
    return locked(std::move(allocation));
}

std::unique_ptr<Allocation> MmapAllocator::with_small_pages(const Request& request) const {
    const std::size_t unit = std::bit_floor(system->page_size());
    std::unique_ptr<Allocation> allocation = touched(request, unit, platform::PageKind::small);
    return allocation ? locked(std::move(allocation)) : nullptr;
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

std::unique_ptr<Allocation> MmapAllocator::locked(std::unique_ptr<Allocation> allocation) const {
    if (locked_pages.value == OptionalFlag::disabled) return allocation;
    AllocationRecord& record = *allocation->record;
    record.locked_bytes = lock_region(*system, allocation->pointer, allocation->bytes);
    if (locked_pages.value == OptionalFlag::forced && record.locked_bytes < allocation->bytes) return nullptr;
    return allocation;
}

Object MmapAllocator::to_config_object() const {
    Object object;
    object.add_string("Allocator", std::string(own_key));
    large_pages.save(object);
    locked_pages.save(object);
    return object;
}

Object MmapAllocator::to_config_object_full() const {
    Object object;
    object.add_string("Allocator", std::string(own_key));
    OptionalFlagSelector::save_full(large_pages, object);
    OptionalFlagSelector::save_full(locked_pages, object);
    return object;
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
