#pragma once
// What a series tells to whoever sums it: how large its numbers get and how much precision an index still needs.
//
// Term indices are unsigned 64-bit numbers; a range (a, b] holds the terms a+1 .. b, the whole series is (0, N].
// Sizes are natural logarithms (nats) in double-double, or words of 32 bits. Everything here is read-only after
// construction: tasks share it.

#include "series/double_double/double_double.h"

#include <cstddef>
#include <cstdint>

namespace zvp::BinarySplitting {

class Series {
public:
    virtual ~Series() = default;

    /// Nats of precision still needed behind index x: (N - x) c, with c the nats of convergence of a term.
    virtual DoubleDouble log_remaining(std::uint64_t x) const = 0;

    /// The same in words: one above the floor.
    virtual std::size_t precision_words(std::uint64_t x) const = 0;

    /// Nats of the largest result of the range (a, b].
    virtual DoubleDouble log_range(std::uint64_t a, std::uint64_t b) const = 0;

    /// The same in words, with two to spare. Never below the true size.
    virtual std::size_t size_words(std::uint64_t a, std::uint64_t b) const = 0;

    /// The same in decimal digits, rounded: for status lines.
    virtual std::uint64_t size_digits(std::uint64_t a, std::uint64_t b) const = 0;

    /// The index that halves the size of the range; b if b - a < 2.
    virtual std::uint64_t midpoint(std::uint64_t a, std::uint64_t b) const = 0;

    std::uint64_t N = 0;           // terms
    std::uint32_t leaf_terms = 0;  // ranges of fewer terms are leaves; at least 2
    std::uint32_t split_slack = 0; // words added to each half by plans of memory
    bool alternating = false;
};

} // namespace zvp::BinarySplitting
