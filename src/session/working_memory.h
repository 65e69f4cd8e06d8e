#pragma once
// The one large block of a computation.

#include "parallel/memory/aligned_buffer.h"
#include "parallel/memory/memory_allocator.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace zvp {

/// An allocation with guard words on both sides of what may be used, whatever allocator it came from.
class WorkingMemory {
public:
    /// What is taken beyond the need, for alignment, guards and small parts.
    static constexpr std::uint64_t slack = 0x100040;

    /// At least `bytes` bytes, which buffer() then has. The lines that tell what was obtained go to `report`. A failure
    /// ends the program.
    WorkingMemory(const MemoryAllocator& allocator, const ParallelContext& context, std::uint64_t bytes,
                  std::vector<StatusCell>& report);

    /// What may be used; aligned to 64 bytes.
    AlignedBufferC<64> buffer() const { return {first, usable}; }

    /// Raises AlgorithmFailedException if something was written in front of the buffer or behind it.
    void check_guards() const;

    /// What went wrong while it was obtained, without keeping it from being used.
    const std::vector<std::string>& warnings() const;
    bool lock_refused() const { return allocation->record && allocation->record->lock_refused; }

private:
    std::unique_ptr<Allocation> allocation;
    std::byte* first = nullptr;
    std::size_t usable = 0;
};

} // namespace zvp
