#include "parallel/memory/allocation.h"

#include "app/failure/exceptions.h"
#include "parallel/memory/aligned_malloc.h"

namespace zvp {

HeapAllocation::HeapAllocation(std::size_t size, std::size_t alignment) {
    pointer = static_cast<std::byte*>(aligned_malloc(size, alignment));
    bytes = size;
}

HeapAllocation::~HeapAllocation() {
    try {
        aligned_free(pointer);
    } catch (const AlgorithmFailedException& damage) {
        damage.print();
    }
}

PageAllocation::PageAllocation(platform::MemorySystem& system_, const platform::Mapping& mapping_, std::size_t size)
    : system(system_), mapping(mapping_) {
    pointer = mapping.data;
    bytes = size;
}

} // namespace zvp
