#pragma once
// The computation of one constant at one size, completely sized before it begins: what a session shows, checks and runs.

#include "app/console/run_report.h"
#include "multiply/contract/multiply_parameters.h"
#include "numbers/big_float.h"
#include "parallel/memory/aligned_buffer.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace zvp {

class MultiplyTables;

/// In memory. Read-only once it is made; its run allocates nothing that grows with the size.
class ConstantPlanB {
public:
    /// For `precision_words` words of precision and products of `tasks` tasks (0 counts as 1). Raises the wish of
    /// `tables`, the session's, to products of 2 (precision + 10) words; derived plans raise it further where they
    /// multiply longer numbers.
    ConstantPlanB(MultiplyTables& tables, std::size_t precision_words, std::uint32_t tasks);
    virtual ~ConstantPlanB() = default;
    ConstantPlanB(const ConstantPlanB&) = delete;
    ConstantPlanB& operator=(const ConstantPlanB&) = delete;

    virtual std::string short_algorithm_name() const = 0;
    virtual std::string long_algorithm_name() const = 0;

    /// The capacity in words that the result needs: a multiple of 16.
    virtual std::size_t result_words() const = 0;

    /// The working memory in bytes, beside the result and the tables: a multiple of 64.
    virtual std::uint64_t memory_bytes() const = 0;

    /// result = the constant, to w words. `pars` names tasks and tables; its own scratch isn't used.
    /// Returns whether the result holds fewer good words than w. Throws BufferTooSmallException before anything is
    /// computed, AlgorithmFailedException and its family where a check found a fault.
    virtual bool run(const MultiplyParameters& pars, const RunReport& report, BigFloat& result,
                     AlignedBufferC<64> memory) const = 0;

    const std::size_t w;
    const std::uint32_t tds;

    /// The objects planned for, with the bytes of each: result and working memory.
    std::vector<std::pair<std::string, std::uint64_t>> memory_budget;
};

} // namespace zvp
