#pragma once

#include "parallel/tasks/parallel_framework.h"

#include <functional>

namespace test {

/// A task family from a function.
class Action final : public zvp::BasicAction {
public:
    explicit Action(std::function<void(std::uint32_t)> function_) : function(std::move(function_)) {}
    void run(std::uint32_t index) override { function(index); }

private:
    const std::function<void(std::uint32_t)> function;
};

} // namespace test
