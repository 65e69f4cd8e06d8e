#pragma once
// How scratch memory is shared out, and how plans round what they will carve.

#include "parallel/memory/aligned_buffer.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace zvp {

/// Every block of scratch memory is a multiple of this many bytes.
inline constexpr std::size_t scratch_unit = 64;

/// What a plan counts for an area of so many words (a multiple of 16), or bytes (a multiple of 64).
constexpr std::size_t padded_words(std::size_t words) { return (words + 15) & ~std::size_t{15}; }
constexpr std::size_t padded_bytes(std::size_t bytes) { return (bytes + scratch_unit - 1) & ~(scratch_unit - 1); }

/// One buffer for each of two branches that run at once: each half of `buffer`, rounded down to the unit.
template <std::size_t A>
struct BufferHalves {
    explicit BufferHalves(AlignedBufferC<A> buffer) {
        constexpr std::size_t unit = std::max(A, scratch_unit);
        const std::size_t half = buffer.bytes / 2 & ~(unit - 1);
        first = {buffer.pointer, half};
        second = {buffer.pointer + half, half};
    }

    AlignedBufferC<A> first;
    AlignedBufferC<A> second;
};

/// An area of words below `end`, cut for two branches. Areas grow downward, so each piece is given by its own end.
struct WordAreaHalves {
    WordAreaHalves(std::uint32_t* end, std::size_t capacity)
        : upper_end(end),
          upper_words(capacity - capacity / 2),
          lower_end(end - upper_words),
          lower_words(capacity / 2) {}

    std::uint32_t* upper_end;
    std::size_t upper_words; // the larger half
    std::uint32_t* lower_end;
    std::size_t lower_words;
};

/// Equal blocks for the tasks of a family, carved in one piece beforehand: block(i) may be called from any task.
template <std::size_t A>
class TaskBlocks {
public:
    /// Carves `tasks` blocks of `bytes_per_task` bytes, a multiple of A and 64, from `buffer`. Fails like spawn().
    TaskBlocks(AlignedBufferC<A>& buffer, std::size_t tasks, std::size_t bytes_per_task_)
        : blocks(buffer.spawn(total(tasks, bytes_per_task_))), bytes_per_task(bytes_per_task_) {}

    AlignedBufferC<A> block(std::size_t i) const { return {blocks.pointer + i * bytes_per_task, bytes_per_task}; }

private:
    static std::uint64_t total(std::size_t tasks, std::size_t bytes_per_task) {
        std::uint64_t product;
        return __builtin_mul_overflow(tasks, bytes_per_task, &product) ? ~std::uint64_t{0} : product;
    }

    const AlignedBufferC<A> blocks;
    const std::size_t bytes_per_task;
};

} // namespace zvp
