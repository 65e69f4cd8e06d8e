#pragma once

#include "digits/hash/digit_counts.h"
#include "parallel/memory/aligned_buffer.h"
#include "parallel/tasks/parallel_framework.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace DigitViewer2 {

/// Scratch space of a reader: it suits files that bypass the system's cache.
using DigitBuffer = zvp::AlignedBufferC<4096>;

/// A stream of the digits behind a number's point, counted from 0; digit values are bytes. Where the digits come from is
/// a derived class's matter: a number in memory, a text file, a set of compressed files.
class BasicDigitReader {
public:
    explicit BasicDigitReader(std::uint8_t radix_) : radix(radix_) {}
    virtual ~BasicDigitReader() = default;
    BasicDigitReader(const BasicDigitReader&) = delete;
    BasicDigitReader& operator=(const BasicDigitReader&) = delete;

    /// The integer part, the point, and some of the first digits.
    virtual std::string first_digits() = 0;

    /// The number of digits, 0 if it is unknown.
    virtual std::uint64_t stream_end() = 0;

    /// Whether digits [start, start + count) can be read.
    virtual bool range_is_available(std::uint64_t start, std::uint64_t count) = 0;

    /// The bytes of a buffer that serve a read of `count` digits well; at most `limit`, as far as the reader can do with
    /// so little.
    virtual std::size_t recommend_buffer_size(std::uint64_t count, std::size_t limit) = 0;

    /// Forgets what was read, so that the next read goes to the source again.
    virtual void flush_cache() = 0;

    /// Continues `stats` over digits [start, start + count).
    virtual void load_stats(zvp::DigitCounts& stats, std::uint64_t start, std::uint64_t count, DigitBuffer buffer,
                            const zvp::ParallelContext& context) = 0;

    /// Writes the values of digits [start, start + count) to `output`, and continues `stats` over them unless it is null.
    virtual void load_digits(std::uint8_t* output, zvp::DigitCounts* stats, std::uint64_t start, std::uint64_t count,
                             DigitBuffer buffer, const zvp::ParallelContext& context) = 0;

    const std::uint8_t radix;
};

} // namespace DigitViewer2
