#pragma once
// A binary fraction in memory to words of another radix, by a scaled remainder tree: each node multiplies the fraction
// by a power of the radix, and the fraction of the product belongs to the lower half of the node's words; the upper half
// goes on with the top words of the same fraction. (D. J. Bernstein, Scaled remainder trees, 2004, turned to conversion.)
//
// Error: a node keeps four words beyond the digits that depend on it, and each product adds at most 4 units of the lowest
// of them. Where an upper half ends next to a word of all zeros or all R - 1, such an error can pass through it: each node
// compares the digit that its upper half would go on with, with the first one of its lower half, and repairs it.

#include "multiply/contract/multiply_parameters.h"
#include "numbers/big_float.h"
#include "parallel/memory/aligned_buffer.h"
#include "radix/ready_table.h"

#include <cstdint>

namespace zvp {

/// The plan of conversions of up to N words of radix R, R >= 2, by up to `tasks_total` tasks. Read-only once made.
class DirectConvertB {
public:
    DirectConvertB(std::uint32_t R, std::uint64_t N_, std::uint32_t tasks_total);

    /// out_end[-1] downward: the first out_len words of |x|'s fraction in radix R, the most significant first (so that
    /// the array from out_end - out_len on has the least significant word first). out_len <= N. The integer part of x
    /// doesn't enter. x, the output and the buffer (total_bytes) are disjoint. pars.tds is at most tasks_total; its own
    /// scratch isn't used; `status` may be null.
    ///
    /// Throws InvalidParametersException ("Input size is too large for conversion plan."), BufferTooSmallException,
    /// LimitExceededException if pars.tables weren't built (ensure_tables()), and AlgorithmFailedException where a power
    /// or two neighbouring words contradict each other. The output is undefined then.
    void run(const MultiplyParameters& pars, StatusNode* status, std::uint32_t* out_end, std::uint64_t out_len,
             const BigFloat& x, AlignedBufferC<64> buffer) const;

    void ensure_tables(MultiplyTables& tables) const { table.ensure_tables(tables); }

    const std::uint64_t N;
    const std::uint32_t tasks_total;
    const ReadyTableB table;
    std::uint64_t input_words = 0;   // the area in which the tree works
    std::uint64_t scratch_bytes = 0; // of its products
    std::uint64_t total_bytes = 0;   // the buffer of a run
};

} // namespace zvp
