#pragma once

#include "digits/reader/digit_reader.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace DigitViewer2 {

/// Where a stream of digits is put. Digits may come in any order; what was written is good once
/// close_and_get_basic_reader() has returned and every digit was stored.
class BasicDigitWriter {
public:
    BasicDigitWriter() = default;
    virtual ~BasicDigitWriter() = default;
    BasicDigitWriter(const BasicDigitWriter&) = delete;
    BasicDigitWriter& operator=(const BasicDigitWriter&) = delete;

    /// The bytes of a buffer that serve a store of `count` digits well; at most `limit`, as far as the writer can do with
    /// so little.
    virtual std::size_t recommend_buffer_size(std::uint64_t count, std::size_t limit) = 0;

    /// Ends the writing and opens what was written for reading; null if it had been ended before.
    virtual std::unique_ptr<BasicDigitReader> close_and_get_basic_reader() = 0;

    /// Writes the digits whose values are input[0 .. count) to the positions [start, start + count) of the stream.
    virtual void store_digits(const std::uint8_t* input, std::uint64_t start, std::uint64_t count, DigitBuffer buffer,
                              const zvp::ParallelContext& context) = 0;
};

} // namespace DigitViewer2
