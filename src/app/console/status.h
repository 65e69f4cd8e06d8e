#pragma once
// How a computation reports: a sink for lines and results, and under it one chain of nodes whose cells form the status
// line, from the outermost task to the innermost. The console's form of it is linear_console_status.h.

#include "app/failure/exception.h"
#include "app/notation/node.h"
#include "platform/clock.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zvp {

/// One piece of a status line: a colour letter (see console.h) and a text.
struct StatusCell {
    char color = 'w';
    std::string text;
};

class StatusNode;
class StatusIteration;

/// What a scope added to a node, to be removed together.
struct StatusFrame {
    std::vector<const StatusNode*> children;
    std::size_t cells = 0;
};

enum class IterationMode : int { percent = 0, fraction = 1, none = 2 };

/// One level of the chain. Cells are changed only by the thread that owns the chain; update() may come from any
/// thread that the owner waits for.
class StatusNode {
public:
    StatusNode() = default;
    /// Pops the cells that this node pushed.
    virtual ~StatusNode() = default;
    StatusNode(const StatusNode&) = delete;
    StatusNode& operator=(const StatusNode&) = delete;

    /// The tree from this node on; for sinks that a client polls.
    virtual Object get_tree() const = 0;

    /// A child, owned by this node, that begins with one cell, with none, or that counts to `total` behind its
    /// cell. `colored` shows the number in bright green.
    virtual StatusNode& make_node(StatusCell cell) = 0;
    virtual StatusNode& make_node() = 0;
    virtual StatusIteration& make_iteration(StatusCell cell, std::uint64_t total, IterationMode mode, bool colored) = 0;

    /// Redraws the line if that is due, or in any case if `force`. Costs a few nanoseconds when nothing is due.
    virtual void update(bool force = false) = 0;

    virtual void pop_frame(const StatusFrame& frame) = 0;
    virtual void push_cells(std::vector<StatusCell> cells) = 0;
    virtual void push_cell(StatusCell cell) = 0;
    virtual void push_node(std::unique_ptr<StatusNode> child) = 0;
};

class StatusIteration : public StatusNode {
public:
    virtual std::uint64_t get_completed() const = 0;

    /// Adds to, or sets, the completed count, and updates the line if that is due.
    virtual void advance(std::uint64_t count) = 0;
    virtual void set_completed(std::uint64_t count) = 0;
};

/// Removes a child from its parent at the end of a scope.
class StatusScope {
public:
    StatusScope(StatusNode& parent_, const StatusNode& child_) : parent(parent_), child(child_) {}
    ~StatusScope() { parent.pop_frame({{&child}, 0}); }
    StatusScope(const StatusScope&) = delete;
    StatusScope& operator=(const StatusScope&) = delete;

private:
    StatusNode& parent;
    const StatusNode& child;
};

/// A result with a name and a tree, for clients that want more than text.
class ReportObject {
public:
    virtual ~ReportObject() = default;
    virtual std::string get_name() const = 0;
    virtual Object to_object() const = 0;
};

/// Where lines, times, warnings and results of a computation go.
class StatusSink {
public:
    StatusSink() = default;
    virtual ~StatusSink() = default;
    StatusSink(const StatusSink&) = delete;
    StatusSink& operator=(const StatusSink&) = delete;

    virtual void print_cells(const std::vector<StatusCell>& cells) = 0;
    virtual void print_line(std::string_view text, char color = ' ') = 0;
    virtual void print_pair(std::size_t width, std::string_view label, const StatusCell& cell) = 0;
    virtual void print_time(std::string_view label, double seconds) = 0;
    virtual void report_result(const ReportObject& object) = 0;
    virtual void warning(std::string_view text) = 0;
    virtual void pause_warning(std::string_view text) = 0;
    [[noreturn]] virtual void fatal(const Exception& exception) = 0;
    virtual void print(std::string_view text) = 0;
    virtual void print(const StatusCell& cell) = 0;
    virtual void end_line() = 0;
    virtual void update(bool force = false) = 0;

    /// Prints the line and makes a fresh first node, which lives until end_task() or the next task.
    virtual StatusNode& begin_task(std::string_view line) = 0;
    virtual void end_task(double seconds) = 0;
};

/// One task of a sink, from its line to its time; a failure on the way is told by the sink.
class StatusTask {
public:
    StatusTask(StatusSink& sink_, std::string_view line)
        : sink(sink_), node(sink.begin_task(line)), began(platform::performance_counter()) {}
    ~StatusTask() { sink.end_task(static_cast<double>(platform::performance_counter() - began) * 1e-9); }
    StatusTask(const StatusTask&) = delete;
    StatusTask& operator=(const StatusTask&) = delete;

private:
    StatusSink& sink;

public:
    StatusNode& node; // the task's first node

private:
    const std::uint64_t began;
};

} // namespace zvp
