#pragma once
// The status chain on the console: one line, redrawn in place on a terminal. Redirected output gets the
// finished lines only.

#include "app/console/iteration_number.h"
#include "app/console/status.h"

#include <atomic>

namespace zvp {

class LinearConsoleNode;

class LinearConsoleRoot final : public StatusSink {
public:
    static constexpr std::size_t default_width = 79;

    explicit LinearConsoleRoot(std::size_t width_ = default_width, double refresh_seconds = 1.0);
    ~LinearConsoleRoot() override;

    void print_cells(const std::vector<StatusCell>& cells) override;
    void print_line(std::string_view text, char color = ' ') override;
    void print_pair(std::size_t width, std::string_view label, const StatusCell& cell) override;
    void print_time(std::string_view label, double seconds) override;
    void report_result(const ReportObject& object) override;
    void warning(std::string_view text) override;
    void pause_warning(std::string_view text) override;
    [[noreturn]] void fatal(const Exception& exception) override;
    void print(std::string_view text) override;
    void print(const StatusCell& cell) override;
    void end_line() override;
    void update(bool force = false) override;
    StatusNode& begin_task(std::string_view line) override;
    void end_task(double seconds) override;

    /// For the nodes: the cells of the line, and whether a redraw is due.
    void push_cell(StatusCell cell);
    void pop_cells(std::size_t count);
    bool refresh_due(bool force) const;

    /// Draws the line, with `extra` behind the cells, unless another thread has just done so and `force` isn't set.
    void draw(bool force, const StatusCell* extra = nullptr);

private:
    void erase();

    std::unique_ptr<LinearConsoleNode> first_node;
    std::vector<StatusCell> cells;
    const std::size_t width;
    std::atomic<std::uint64_t> last_refresh{0}; // coarse_counter()
    std::atomic<bool> displayed{false};
    const std::uint64_t refresh_interval; // nanoseconds
};

class LinearConsoleNode : public StatusNode {
public:
    explicit LinearConsoleNode(LinearConsoleRoot& root_) : root(root_) {}
    ~LinearConsoleNode() override;

    Object get_tree() const override;
    StatusNode& make_node(StatusCell cell) override;
    StatusNode& make_node() override;
    StatusIteration& make_iteration(StatusCell cell, std::uint64_t total, IterationMode mode, bool colored) override;
    void update(bool force = false) override { root.update(force); }
    void pop_frame(const StatusFrame& frame) override;
    void push_cells(std::vector<StatusCell> cells) override;
    void push_cell(StatusCell cell) override;
    void push_node(std::unique_ptr<StatusNode> child_) override;

private:
    LinearConsoleRoot& root;
    std::unique_ptr<StatusNode> child;
    std::size_t pushed_cells = 0;
};

class LinearConsoleIteration final : public StatusIteration {
public:
    LinearConsoleIteration(LinearConsoleRoot& root_, StatusCell cell, std::uint64_t total, IterationMode mode,
                           bool colored_);
    ~LinearConsoleIteration() override;

    Object get_tree() const override;
    StatusNode& make_node(StatusCell cell) override;
    StatusNode& make_node() override;
    StatusIteration& make_iteration(StatusCell cell, std::uint64_t total, IterationMode mode, bool colored) override;
    void update(bool force = false) override;
    void pop_frame(const StatusFrame& frame) override;
    void push_cells(std::vector<StatusCell> cells) override;
    void push_cell(StatusCell cell) override;
    void push_node(std::unique_ptr<StatusNode> child) override;

    std::uint64_t get_completed() const override;
    void advance(std::uint64_t count) override;
    void set_completed(std::uint64_t count) override;

private:
    LinearConsoleRoot& root;
    const IterationNumber number;
    std::atomic<std::uint64_t> completed{0};
    const bool colored;
    std::size_t pushed_cells = 1;
};

} // namespace zvp
