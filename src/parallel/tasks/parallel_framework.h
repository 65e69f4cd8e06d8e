#pragma once
// Numbered tasks and what runs them.

#include <cstdint>

namespace zvp {

/// A family of tasks: run(index) does one slice of a work.
class BasicAction {
public:
    virtual ~BasicAction() = default;
    virtual void run(std::uint32_t index) = 0;
};

/// Runs families of tasks. When a call returns, every task of its range has run; if any threw, the call throws (which
/// one, each framework tells). Tasks may call the framework that they run under, and several threads may use one
/// framework at once.
class ParallelFramework {
public:
    virtual ~ParallelFramework() = default;

    /// Runs action.run(i) for i in [low, high).
    virtual void run_in_parallel(BasicAction& action, std::uint32_t low, std::uint32_t high) = 0;

    /// Runs first.run(0) and second.run(0).
    virtual void run_in_parallel(BasicAction& first, BasicAction& second) = 0;
};

/// How a computation cuts its work and what runs it: handed to whatever goes parallel.
struct ParallelContext {
    std::uint32_t tds = 1;                  // task decomposition: how many tasks a parallel step is cut into
    ParallelFramework* framework = nullptr; // null: everything runs on the caller's thread
};

} // namespace zvp
