#pragma once
// The dry run of a whole computation: whether its plan holds, and what each phase of it asks for.

#include "parallel/memory/dry_run.h"

#include <cstdint>
#include <vector>

namespace zvp {

class ConstantPlanB;
class FloatWriterB;
class MultiplyTables;

/// A working memory on which the computation was walked from its first term to the last proof.
struct MemoryTrial {
    std::uint64_t bytes = 0;
    std::vector<DryRun::Phase> phases; // as the event log names them
};

/// Walks plan.run() and writer.write() on `bytes` of working memory, a multiple of 64, of which the result lies at the
/// front; `tables` were asked for what both need. Where the computation asks for more, the memory grows by steps of a
/// sixteenth; if that doesn't help, as with a number that is too short for what goes into it, the exception of the
/// computation passes through. Costs some milliseconds and allocates nothing that grows with the size.
MemoryTrial try_memory(const ConstantPlanB& plan, const FloatWriterB& writer, const MultiplyTables& tables,
                       std::uint64_t bytes);

} // namespace zvp
