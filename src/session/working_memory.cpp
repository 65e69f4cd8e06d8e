#include "session/working_memory.h"

#include "app/console/console.h"
#include "app/failure/exceptions.h"

#include <cstring>

namespace zvp {

namespace {

constexpr unsigned alignment_bits = 12;
constexpr std::uint32_t head_guard = 0x4BD0187D;
constexpr std::uint32_t tail_guard = 0x0559CFE4;
constexpr std::size_t guard_room = 64; // a guard word and what keeps the buffer's ends multiples of 64

std::uint32_t read_word(const std::byte* p) {
    std::uint32_t word;
    std::memcpy(&word, p, sizeof word);
    return word;
}

} // namespace

WorkingMemory::WorkingMemory(const MemoryAllocator& allocator, const ParallelContext& context, std::uint64_t bytes,
                             std::vector<StatusCell>& report)
    : allocation(allocator.allocate_or_stop(report, context, alignment_bits, bytes + slack)) {
    if (reinterpret_cast<std::uintptr_t>(allocation->pointer) % sizeof(std::uint32_t) != 0)
        fatal_stop("Alignment Error");
    const std::size_t whole = (bytes + slack) & ~(guard_room - 1);
    first = allocation->pointer + guard_room;
    usable = whole - 2 * guard_room;
    std::memcpy(first - sizeof head_guard, &head_guard, sizeof head_guard);
    std::memcpy(first + usable, &tail_guard, sizeof tail_guard);
}

void WorkingMemory::check_guards() const {
    if (read_word(first - sizeof head_guard) != head_guard)
        throw AlgorithmFailedException("aligned_free()", "Memory buffer has been underrun.");
    if (read_word(first + usable) != tail_guard)
        throw AlgorithmFailedException("aligned_free()", "Memory buffer has been overrun.");
}

const std::vector<std::string>& WorkingMemory::warnings() const {
    static const std::vector<std::string> none;
    return allocation->record ? allocation->record->warnings : none;
}

} // namespace zvp
