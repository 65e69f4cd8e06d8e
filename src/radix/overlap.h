#pragma once
// Where two halves of a conversion meet: what the upper one would go on with, beside what the lower one begins with.

#include <cstddef>
#include <cstdint>

namespace zvp {

/// The words upper[0, top) are output words of radix R, the least significant first, computed from a number whose next
/// word would be `actual`; the exact next word is `expected`. Where both differ because a rounding error of
/// the upper number has passed through a word of all zeros or all R - 1, the words are raised or lowered by one unit of
/// the last, with a warning on the console.
///
/// Throws AlgorithmFailedException where the carry would leave the first word ("add1()", "sub1()": "Impossible
/// carryout.") and where no rounding error explains the difference ("fixup()").
void repair_overlap(std::uint32_t R, std::uint32_t* upper, std::size_t top, std::uint32_t expected,
                    std::uint32_t actual);

} // namespace zvp
