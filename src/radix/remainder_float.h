#pragma once

#include "radix/ready_table.h"

#include <cstdint>

namespace zvp {

/// A fraction in an area of words: its `length` words lie below `end`, the word at end[-1] just behind the point; words
/// below them count as zeros, and the area has `capacity` words below `end`.
struct RemainderFloatB {
    std::uint32_t* end = nullptr;
    std::uint64_t length = 0;
    std::uint64_t capacity = 0;

    /// *this, an area of at least P words with P the level's p_words, becomes the fraction of input * R^(b 2^level), P
    /// words of it. It may lie in the words of the input. Cuts the input to 2P words. `tasks` of pars.tds, scratch of
    /// plan.product_bytes(level, pars.tds) in pars.M. Short of the exact fraction by less than 4 units of the lowest word,
    /// or above by less than 1, modulo 1. Throws InvalidParametersException ("Truncated Range") and
    /// AlgorithmFailedException ("Unexpected: tmag < 0") for a table that doesn't fit.
    void set_inverse_fmul(const ReadyPowers& table, unsigned level, const RemainderFloatB& input,
                          const MultiplyParameters& pars);
};

} // namespace zvp
