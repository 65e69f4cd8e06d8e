#pragma once

#include "parallel/memory/allocation_record.h"
#include "platform/memory.h"

#include <cstddef>
#include <memory>

namespace zvp {

/// Memory that an allocator gave, returned by the destructor. No pointer means that it failed, or that nothing was asked
/// for.
class Allocation {
public:
    Allocation() = default;
    virtual ~Allocation() = default;
    Allocation(const Allocation&) = delete;
    Allocation& operator=(const Allocation&) = delete;

    std::byte* pointer = nullptr;
    std::size_t bytes = 0; // after rounding
    std::unique_ptr<AllocationRecord> record;
};

/// A block of aligned_malloc(). One whose guards turn out to be damaged when it ends is reported and not freed.
class HeapAllocation final : public Allocation {
public:
    /// Raises std::bad_alloc.
    HeapAllocation(std::size_t size, std::size_t alignment);
    ~HeapAllocation() override;
};

/// A mapping of the platform's.
class PageAllocation final : public Allocation {
public:
    /// Takes the mapping, which has `size` bytes.
    PageAllocation(platform::MemorySystem& system_, const platform::Mapping& mapping_, std::size_t size);
    ~PageAllocation() override { system.release(mapping); }

private:
    platform::MemorySystem& system;
    const platform::Mapping mapping;
};

} // namespace zvp
