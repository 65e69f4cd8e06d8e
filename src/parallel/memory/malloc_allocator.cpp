#include "parallel/memory/malloc_allocator.h"

#include "parallel/memory/touch.h"

#include <new>

namespace zvp {

std::unique_ptr<MemoryAllocator> MallocAllocator::from_config(const Object&) {
    return std::make_unique<MallocAllocator>();
}

std::unique_ptr<Allocation> MallocAllocator::allocate(const ParallelContext& context, unsigned alignment_bits,
                                                      std::size_t bytes) const {
    const std::size_t alignment = mapping_alignment(alignment_bits, 1);
    if (alignment == 0) return std::make_unique<Allocation>();
    std::unique_ptr<Allocation> allocation;
    try {
        allocation = std::make_unique<HeapAllocation>(bytes, alignment);
    } catch (const std::bad_alloc&) {
        return std::make_unique<Allocation>();
    }
    touch_in_parallel(context, allocation->pointer, bytes);
    allocation->record = std::make_unique<AllocationRecord>();
    allocation->record->total_bytes = bytes;
    allocation->record->nodes = count_node_bytes(context, *system, allocation->pointer, bytes);
    return allocation;
}

} // namespace zvp
