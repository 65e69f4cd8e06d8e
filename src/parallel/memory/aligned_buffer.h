#pragma once

#include "app/failure/exceptions.h"
#include "parallel/memory/dry_run.h"
#include "parallel/memory/linear_word_buffer.h"

#include <cstddef>
#include <cstdint>
#include <limits>

namespace zvp {

/// Scratch memory that starts at a multiple of A bytes, to be carved from the front in multiples of A.
///
/// It owns nothing and is copied freely. A routine carves from its own copy, so its caller's buffer stays whole, and the
/// next call uses the same space again. One thread carves from one object. No operation touches the memory or the heap.
/// Plans reckon with these rules, so a failure here means that a plan and its execution disagree.
template <std::size_t A>
class AlignedBufferC {
    static_assert(A >= sizeof(std::uint32_t) && (A & (A - 1)) == 0);

public:
    AlignedBufferC() = default;

    /// Raises InvalidParametersException if the pointer is misaligned.
    AlignedBufferC(void* pointer_, std::size_t bytes_) : pointer(static_cast<std::byte*>(pointer_)), bytes(bytes_) {
        if (reinterpret_cast<std::uintptr_t>(pointer_) % A != 0)
            fail_parameters("AlignedBufferC::AlignedBufferC()", "Pointer is misaligned.");
    }

    /// The front `size` bytes as a buffer; this one moves behind them. Raises BufferTooSmallException, or, if there is
    /// room, InvalidParametersException for a size that isn't a multiple of A.
    AlignedBufferC spawn(std::uint64_t size) { return {cut("AlignedBufferC::spawn()", size), size}; }

    /// The same for `count` 32-bit words; the exceptions tell bytes.
    LinearWordBuffer spawn_words(std::uint64_t count) {
        constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
        const std::uint64_t size = count > most / sizeof(std::uint32_t) ? most : count * sizeof(std::uint32_t);
        std::byte* front = cut("AlignedBufferC::spawn_words()", size);
        return {reinterpret_cast<std::uint32_t*>(front), static_cast<std::size_t>(count)};
    }

    /// The rest of this buffer from the next multiple of B on; this one stays as it is. Raises BufferTooSmallException
    /// if there is none in it.
    template <std::size_t B = 4096>
    AlignedBufferC<B> extract_aligned() const {
        static_assert(B >= A && (B & (B - 1)) == 0);
        const std::size_t skipped = (0 - reinterpret_cast<std::uintptr_t>(pointer)) & (B - 1);
        if (skipped > bytes) fail_size("AlignedBufferC::extract_aligned()", skipped);
        return {pointer + skipped, bytes - skipped};
    }

    std::byte* pointer = nullptr;
    std::size_t bytes = 0;

private:
    std::byte* cut(const char* function, std::uint64_t size) {
        if (size > bytes) fail_size(function, size);
        if (size % A != 0) fail_parameters(function, "Size is misaligned.");
        std::byte* const front = pointer;
        pointer += size;
        bytes -= size;
        DryRun::reach(pointer);
        return front;
    }

    [[noreturn, gnu::cold, gnu::noinline]] void fail_size(const char* function, std::uint64_t wanted) const {
        throw BufferTooSmallException(function, bytes, wanted);
    }
    [[noreturn, gnu::cold, gnu::noinline]] static void fail_parameters(const char* function, const char* message) {
        throw InvalidParametersException(function, message);
    }
};

} // namespace zvp
