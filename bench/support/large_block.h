#pragma once
// Memory as a computation has it.

#include "platform/memory.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>

namespace zvp {

/// Touched memory in large pages where the system has them: in small ones, what lies where in the second cache is left to
/// chance, which makes a ring product of 17 KiB slower by a quarter.
class LargeBlock {
public:
    explicit LargeBlock(std::size_t bytes) {
        const std::size_t padded = (bytes + large_page - 1) / large_page * large_page;
        mapping = system.map(padded, large_page, platform::PageKind::large_transparent);
        if (!mapping.base) mapping = system.map(padded, system.page_size(), platform::PageKind::small);
        if (!mapping.base) std::abort();
        std::memset(mapping.data, 0x35, padded);
    }
    ~LargeBlock() { system.release(mapping); }
    LargeBlock(const LargeBlock&) = delete;
    LargeBlock& operator=(const LargeBlock&) = delete;

    std::byte* get() const { return mapping.data; }

private:
    static constexpr std::size_t large_page = std::size_t{1} << 21;

    platform::MemorySystem& system = platform::memory_system();
    platform::Mapping mapping;
};

} // namespace zvp
