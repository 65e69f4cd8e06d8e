#pragma once

#include "parallel/memory/memory_allocator.h"

namespace zvp {

/// The plain heap, by aligned_malloc(): pages as the system gives them, guards at both ends.
class MallocAllocator final : public AllocatorOf<MallocAllocator> {
public:
    static constexpr std::string_view own_key = "malloc";
    static constexpr std::string_view name = "C malloc()";

    explicit MallocAllocator(platform::MemorySystem& system_ = platform::memory_system()) : AllocatorOf(system_) {}

    static std::unique_ptr<MemoryAllocator> from_config(const Object& object);

    bool acquire_privileges() const override { return true; }
    std::unique_ptr<Allocation> allocate(const ParallelContext& context, unsigned alignment_bits,
                                         std::size_t bytes) const override;
    std::uint32_t print_menu_rows(std::uint32_t first_row) const override { return first_row; }
    void menu_select(std::uint32_t) override {}

private:
    void save(Object&, bool) const override {}
};

} // namespace zvp
