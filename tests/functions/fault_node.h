#pragma once
// A status node that lets a test do something at the n-th step that a run shows.

#include "app/console/status.h"
#include "app/failure/exceptions.h"

#include <functional>
#include <memory>

namespace test {

class FaultNode final : public zvp::StatusNode {
public:
    FaultNode(std::size_t at, std::function<void()> act) : own{0, at, std::move(act)}, shared(&own) {}

    /// How many there have been.
    std::size_t steps() const { return shared->steps; }

    zvp::Object get_tree() const override { return zvp::Object(); }
    StatusNode& make_node(zvp::StatusCell) override { return make_node(); }
    StatusNode& make_node() override {
        child = std::make_unique<FaultNode>(shared);
        return *child;
    }
    zvp::StatusIteration& make_iteration(zvp::StatusCell, std::uint64_t, zvp::IterationMode, bool) override {
        throw zvp::StringException("", "no iterations here");
    }
    void update(bool) override {
        if (child) return; // a level that begins has nothing yet
        if (shared->steps++ == shared->at) shared->act();
    }
    void pop_frame(const zvp::StatusFrame& frame) override {
        if (!frame.children.empty()) child.reset();
    }
    void push_cells(std::vector<zvp::StatusCell>) override {}
    void push_cell(zvp::StatusCell) override {}
    void push_node(std::unique_ptr<StatusNode>) override {}

private:
    struct Counter {
        std::size_t steps;
        std::size_t at;
        std::function<void()> act;
    };

public:
    explicit FaultNode(Counter* shared_) : shared(shared_) {}

private:
    Counter own{};
    Counter* shared;
    std::unique_ptr<FaultNode> child;
};

} // namespace test
