#pragma once

#include "bbp/summation_mode.h"
#include "bbp/term_record.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace BBPv2 {

struct ThreadSettings {
    std::uint32_t threads = 1;
    bool pin = false; // bind thread i to core i, modulo the number of cores
};

/// The terms of the next chunk when `remaining` are left for `threads` threads: large enough that taking one
/// costs nothing, small enough that the threads end together.
std::uint64_t chunk_terms(std::uint64_t remaining, std::uint32_t threads);

/// The sum of a record, its sign aside, over k in [0, terms), as a fraction of `words` words.
///
/// The threads take chunks from the highest indices down. `progress` is called after each chunk, under a lock,
/// with the terms done so far. The first exception of a thread stops the others and is thrown here.
FractionFloat sum_record(const TermRecord& record, std::uint64_t terms, std::size_t words,
                         const std::vector<const SummationMode*>& modes, const ThreadSettings& settings,
                         const std::function<void(std::uint64_t done)>& progress);

} // namespace BBPv2
