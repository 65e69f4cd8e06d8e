#pragma once
// The status chain for sinks that a client polls: each node keeps its own cells, and the tree can be asked for from another
// thread while the computation goes on.

#include "app/console/iteration_number.h"
#include "app/console/status.h"

#include <atomic>
#include <mutex>

namespace zvp {

/// The lock of one chain: the computation changes it, the client's thread reads it. Each node takes it again for itself.
using StatusTreeLock = std::recursive_mutex;

class LinearNetworkNode final : public StatusNode {
public:
    /// The lock outlives the node.
    explicit LinearNetworkNode(StatusTreeLock& lock_) : tree_lock(lock_) {}
    ~LinearNetworkNode() override;

    /// "Text": the cells as objects of "Color" and "Text"; "Children": the trees of the nodes below. Any thread.
    Object get_tree() const override;

    StatusNode& make_node(StatusCell cell) override;
    StatusNode& make_node() override;
    StatusIteration& make_iteration(StatusCell cell, std::uint64_t total, IterationMode mode, bool colored) override;
    void update(bool = false) override {} // the client asks
    void pop_frame(const StatusFrame& frame) override;
    void push_cells(std::vector<StatusCell> cells) override;
    void push_cell(StatusCell cell) override;
    void push_node(std::unique_ptr<StatusNode> child) override;

private:
    StatusTreeLock& tree_lock;
    std::vector<StatusCell> cells;
    std::unique_ptr<StatusNode> child;
};

class LinearNetworkIteration final : public StatusIteration {
public:
    LinearNetworkIteration(StatusTreeLock& lock_, StatusCell cell, std::uint64_t total, IterationMode mode,
                           bool colored_);

    /// The cells, and the number as the last one. Any thread.
    Object get_tree() const override;

    /// An iteration has no children: these fail as those of the console do.
    StatusNode& make_node(StatusCell cell) override;
    StatusNode& make_node() override;
    StatusIteration& make_iteration(StatusCell cell, std::uint64_t total, IterationMode mode, bool colored) override;
    void push_node(std::unique_ptr<StatusNode> child) override;

    void update(bool = false) override {}
    void pop_frame(const StatusFrame& frame) override;
    void push_cells(std::vector<StatusCell> cells) override;
    void push_cell(StatusCell cell) override;

    std::uint64_t get_completed() const override { return completed.load(std::memory_order_relaxed); }
    void advance(std::uint64_t count) override { completed.fetch_add(count, std::memory_order_relaxed); }
    void set_completed(std::uint64_t count) override { completed.store(count, std::memory_order_relaxed); }

private:
    StatusTreeLock& tree_lock;
    std::vector<StatusCell> cells;
    const IterationNumber number;
    std::atomic<std::uint64_t> completed{0};
    const bool colored;
};

} // namespace zvp
