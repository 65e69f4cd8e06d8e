#pragma once

#include "app/notation/optional_flag.h"
#include "parallel/memory/memory_allocator.h"

namespace zvp {

/// Whole pages from the system: large ones and locked ones as far as wanted and possible.
///
/// Large pages come from the system's pool, where they are locked by nature; else they are transparent ones, which the
/// record counts as they turned out, and which are locked like small pages. Under Forced every page must be large, and
/// under Forced locking every byte locked, or the allocation fails; pages that can't be locked aren't tried as others.
class MmapAllocator final : public AllocatorOf<MmapAllocator> {
public:
    static constexpr std::string_view own_key = "mmap";
    static constexpr std::string_view name = "mmap()";

    explicit MmapAllocator(platform::MemorySystem& system_ = platform::memory_system()) : AllocatorOf(system_) {}

    static std::unique_ptr<MemoryAllocator> from_config(const Object& object);

    bool acquire_privileges() const override;
    std::unique_ptr<Allocation> allocate(const ParallelContext& context, unsigned alignment_bits,
                                         std::size_t bytes) const override;
    std::uint32_t print_menu_rows(std::uint32_t first_row) const override;
    void menu_select(std::uint32_t row) override;

    OptionalFlagConfig large_pages{"LargePages", OptionalFlag::attempt};
    OptionalFlagConfig locked_pages{"LockedPages", OptionalFlag::attempt};

private:
    void save(Object& object, bool full) const override;

    struct Request;

    /// Each gives null if it can't serve; the next may be tried then.
    std::unique_ptr<Allocation> with_large_pages(const Request& request, platform::PageKind kind) const;
    std::unique_ptr<Allocation> with_small_pages(const Request& request) const;

    /// A touched block of that kind with the record of its size and nodes; null if there is none.
    std::unique_ptr<Allocation> touched(const Request& request, std::size_t unit, platform::PageKind kind) const;

    /// Locks the block if it is to be locked; false if that was forced and failed.
    bool lock(Allocation& allocation) const;
};

} // namespace zvp
