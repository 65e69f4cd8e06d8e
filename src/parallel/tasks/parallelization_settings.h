#pragma once

#include "parallel/tasks/framework_config.h"

#include <cstdint>
#include <memory>

namespace zvp {

inline constexpr std::uint32_t max_task_decomposition = 65'536;

/// The parallel settings of one computation.
class ParallelizationSettings {
public:
    /// The defaults of this machine.
    ParallelizationSettings();

    /// Reads "TaskDecomposition", "Framework" and the framework's keys. Raises KeyNotFoundException and
    /// InvalidParametersException; the number of cores is the machine's.
    explicit ParallelizationSettings(const Object& object);

    void restore_defaults();

    Object to_config_object() const { return saved(false); }
    Object to_config_object_full() const { return saved(true); }

    /// Shows the settings and lets the user change them.
    void menu();

    std::uint32_t logical_cores;
    std::uint32_t task_decomposition;
    std::unique_ptr<ParallelFrameworkConfig> framework;

private:
    Object saved(bool full) const;
    void select_framework();
};

/// The number as it stands if it is 1 .. max_task_decomposition; others raise InvalidParametersException.
std::uint32_t checked_task_decomposition(std::int64_t tasks);

/// The default number of tasks for that many cores: the cores if they are a power of two, else twice as many.
std::uint32_t default_task_decomposition(std::uint32_t logical_cores);

/// How a linear sweep over `length` elements is cut: tasks 0 .. tasks - 1 of `block` elements, the last one shorter.
struct SweepSplit {
    std::uint32_t tasks;
    std::size_t block;
};

/// One task below `threshold`; else up to min(tds, cap) tasks of at least `min_block` elements, a multiple of
/// `alignment`.
SweepSplit split_sweep(std::size_t length, std::size_t threshold, std::uint32_t tds, std::uint32_t cap,
                       std::size_t min_block, std::size_t alignment);

} // namespace zvp
