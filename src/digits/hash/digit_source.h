#pragma once
// Counting digits on several threads, wherever they come from.

#include "digits/hash/digit_counts.h"
#include "parallel/tasks/parallel_framework.h"

#include <cstddef>
#include <cstdint>

namespace zvp {

/// A run of digits that tasks process piece by piece: words to be turned into digits, characters of a file.
class DigitSource {
public:
    virtual ~DigitSource() = default;

    /// Adds digits [begin, end) of the run to `counts`, in order. Called by several threads at once, each with pieces
    /// and counts of its own.
    virtual void process(DigitCounts& counts, std::uint64_t begin, std::uint64_t end) = 0;
};

/// How a run may be cut.
struct DigitSplit {
    std::uint64_t unit;                // pieces begin at multiples of it: 64 words of the source, counted in digits
    std::uint64_t min_digits = 10'000; // of a piece, and of a run that is cut; 1'000 for files and far memory

    static constexpr DigitSplit of_words(std::uint64_t digits_per_word) { return {64 * digits_per_word}; }
};

/// Continues `counts` over the first n digits of the source: in one piece if n is below min_digits, tds below 2 or the
/// framework null, else in up to tds pieces. The result doesn't depend on the split. When a piece throws, so does the
/// call, and `counts` are as they were (after a run in one piece: as the source left them).
void count_digits(DigitCounts& counts, DigitSource& source, std::uint64_t n, DigitSplit split,
                  const ParallelContext& context);

} // namespace zvp
