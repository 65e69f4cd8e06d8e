#pragma once

#include "app/failure/exceptions.h"
#include "parallel/memory/dry_run.h"

#include <cstddef>
#include <cstdint>

namespace zvp {

/// A span of 32-bit words without a demand on alignment, to be cut up. It owns nothing; a copy leaves the original's
/// space as it was. One thread cuts from one object.
struct LinearWordBuffer {
    std::uint32_t* pointer = nullptr;
    std::size_t words = 0;

    /// The lowest `count` words; this buffer moves up behind them. Raises BufferTooSmallException, in words.
    LinearWordBuffer cut_from_bottom(std::uint64_t count) {
        if (count > words) fail(count);
        const LinearWordBuffer front{pointer, static_cast<std::size_t>(count)};
        pointer += count;
        words -= count;
        DryRun::reach(pointer);
        return front;
    }

private:
    [[noreturn, gnu::cold, gnu::noinline]] void fail(std::uint64_t count) const {
        throw BufferTooSmallException("LinearWordBuffer::cut_from_bottom()", words, count);
    }
};

} // namespace zvp
