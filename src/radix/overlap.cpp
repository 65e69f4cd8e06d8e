#include "radix/overlap.h"

#include "app/console/console.h"
#include "app/console/console_lock.h"
#include "app/console/number_forms.h"
#include "app/failure/exceptions.h"

#include <mutex>

namespace zvp {

namespace {

/// Replaces the words equal to `from` by `to`, from the last word up to the first other one, which is returned.
std::uint32_t& carry_through(const char* function, std::uint32_t* word, std::size_t words, std::uint32_t from,
                             std::uint32_t to) {
    for (; words > 0; --words, ++word) {
        if (*word != from) return *word;
        *word = to;
    }
    throw AlgorithmFailedException(function, "Impossible carryout.");
}

void add1(std::uint32_t R, std::uint32_t* lowest, std::size_t words) {
    ++carry_through("add1()", lowest, words, R - 1, 0);
}

void sub1(std::uint32_t R, std::uint32_t* lowest, std::size_t words) {
    --carry_through("sub1()", lowest, words, 0, R - 1);
}

/// One warning at a time: halves meet on all threads.
void print_mismatch(std::uint32_t expected, std::uint32_t actual, const char* correction) {
    const std::lock_guard lock(console_mutex());
    print_warning("Overlap Mismatch");
    print_labelc("Expected", format_number(expected), 'G');
    print_line();
    print_labelc("Actual", format_number(actual), 'R');
    print_line();
    if (correction) print_line(correction, 'Y');
    reset_color();
}

} // namespace

void repair_overlap(std::uint32_t R, std::uint32_t* upper, std::size_t top, std::uint32_t expected,
                    std::uint32_t actual) {
    if (expected == actual) return;
    const bool raise = expected == 0 && actual == R - 1;
    const bool lower = expected == R - 1 && actual == 0;
    print_mismatch(expected, actual,
                   raise   ? "Performing additive correction..."
                   : lower ? "Performing subtractive correction..."
                           : nullptr);
    if (raise) return add1(R, upper, top);
    if (lower) return sub1(R, upper, top);
    throw AlgorithmFailedException("fixup()", "Overlap Mismatch:\n    RL = " + format_number(R)
                                                  + "\n    Expected = " + format_number(expected)
                                                  + "\n    Actual   = " + format_number(actual));
}

} // namespace zvp
