#include "app/console/linear_console_status.h"

#include "app/console/console.h"
#include "app/console/console_lock.h"
#include "app/console/number_forms.h"
#include "app/console/run_watch.h"
#include "app/console/text_width.h"
#include "app/failure/exceptions.h"
#include "platform/clock.h"
#include "platform/console_io.h"
#include "platform/process.h"

#include <algorithm>
#include <exception>
#include <mutex>

namespace zvp {

namespace {

/// A line that fills the terminal's last column would wrap.
std::size_t drawable_width(std::size_t width) {
    const unsigned columns = platform::output_columns();
    return columns == 0 ? width : std::min<std::size_t>(width, columns - 1);
}

} // namespace

LinearConsoleRoot::LinearConsoleRoot(std::size_t width_, double refresh_seconds)
    : width(drawable_width(width_)), refresh_interval(static_cast<std::uint64_t>(refresh_seconds * 1e9)) {}

LinearConsoleRoot::~LinearConsoleRoot() {
    first_node.reset();
    erase();
}

void LinearConsoleRoot::print_cells(const std::vector<StatusCell>& line) {
    for (const StatusCell& cell : line) print(cell);
    end_line();
}

void LinearConsoleRoot::print_line(std::string_view text, char color) {
    erase();
    zvp::print_line(text, color);
}

void LinearConsoleRoot::print_pair(std::size_t label_width, std::string_view label, const StatusCell& cell) {
    erase();
    print_labelm_line(label_width, label, cell.text, cell.color);
}

void LinearConsoleRoot::print_time(std::string_view label, double seconds) {
    erase();
    zvp::print(std::string(label) + ":  ", 'G');
    zvp::print_line(format_seconds(seconds), 'Y');
    set_color('w');
}

void LinearConsoleRoot::report_result(const ReportObject&) {}

void LinearConsoleRoot::warning(std::string_view text) {
    erase();
    print_warning(text);
}

void LinearConsoleRoot::pause_warning(std::string_view text) {
    warning(text);
    if (!pause()) return;
    reset_color();
    platform::end_process(interrupted_exit_code);
}

void LinearConsoleRoot::fatal(const Exception& exception) {
    erase();
    exception.print();
    fatal_stop("Fatal error encountered. Terminating program.");
}

void LinearConsoleRoot::print(std::string_view text) {
    erase();
    zvp::print(text);
}

void LinearConsoleRoot::print(const StatusCell& cell) {
    erase();
    zvp::print(cell.text, cell.color);
}

void LinearConsoleRoot::end_line() {
    erase();
    set_color('w');
    zvp::print_line();
}

bool LinearConsoleRoot::refresh_due(bool force) const {
    if (!platform::output_is_terminal()) return false;
    return force || !displayed.load(std::memory_order_relaxed)
           || platform::coarse_counter() - last_refresh.load(std::memory_order_relaxed) >= refresh_interval;
}

void LinearConsoleRoot::update(bool force) {
    if (refresh_due(force)) draw(force);
}

void LinearConsoleRoot::draw(bool force, const StatusCell* extra) {
    const std::lock_guard lock(console_mutex());
    if (!refresh_due(force) || !platform::output_ready()) return;
    last_refresh = platform::coarse_counter();
    displayed = true;
    zvp::print("\r" + std::string(width, ' ') + "\r", 'w');
    std::size_t used = 0;
    const auto draw_cell = [&](const StatusCell& cell) {
        used += column_count(cell.text);
        if (used > width) return false;
        zvp::print(cell.text, cell.color);
        return true;
    };
    bool fits = true;
    for (std::size_t i = 0; i < cells.size() && fits; ++i) fits = draw_cell(cells[i]);
    if (extra && fits) draw_cell(*extra);
    set_color('w');
}

void LinearConsoleRoot::erase() {
    if (!displayed) return;
    const std::lock_guard lock(console_mutex());
    displayed = false;
    zvp::print("\r" + std::string(width, ' ') + "\r", 'w');
}

StatusNode& LinearConsoleRoot::begin_task(std::string_view line) {
    note_running_task(line);
    print_line(line);
    first_node.reset();
    first_node = std::make_unique<LinearConsoleNode>(*this);
    return *first_node;
}

void LinearConsoleRoot::end_task(double seconds) {
    note_running_task("");
    first_node.reset();
    if (std::uncaught_exceptions() > 0) {
        displayed = false;
        zvp::print_line();
        return;
    }
    erase();
    zvp::print("Time:    ");
    zvp::print_line(format_seconds(seconds), 'T');
    set_color('w');
}

void LinearConsoleRoot::push_cell(StatusCell cell) { cells.push_back(std::move(cell)); }

void LinearConsoleRoot::pop_cells(std::size_t count) { cells.resize(cells.size() - std::min(count, cells.size())); }

LinearConsoleNode::~LinearConsoleNode() {
    child.reset();
    root.pop_cells(pushed_cells);
}

Object LinearConsoleNode::get_tree() const {
    throw StringException("LinearConsoleNode::get_tree()", "Polling is not supported.");
}

StatusNode& LinearConsoleNode::make_node(StatusCell cell) {
    StatusNode& node = make_node();
    node.push_cell(std::move(cell));
    return node;
}

StatusNode& LinearConsoleNode::make_node() {
    push_node(std::make_unique<LinearConsoleNode>(root));
    return *child;
}

StatusIteration& LinearConsoleNode::make_iteration(StatusCell cell, std::uint64_t total, IterationMode mode,
                                                   bool colored) {
    if (child) push_node(nullptr);
    auto iteration = std::make_unique<LinearConsoleIteration>(root, std::move(cell), total, mode, colored);
    StatusIteration& made = *iteration;
    push_node(std::move(iteration));
    return made;
}

void LinearConsoleNode::pop_frame(const StatusFrame& frame) {
    for (const StatusNode* popped : frame.children) {
        if (!child || popped != child.get())
            throw StringException("LinearConsoleNode::pop_frame()", "Attempted to pop a non-existent node.");
        child.reset();
    }
    const std::size_t count = std::min(frame.cells, pushed_cells);
    root.pop_cells(count);
    pushed_cells -= count;
}

void LinearConsoleNode::push_cells(std::vector<StatusCell> cells) {
    for (StatusCell& cell : cells) push_cell(std::move(cell));
}

void LinearConsoleNode::push_cell(StatusCell cell) {
    root.push_cell(std::move(cell));
    ++pushed_cells;
}

void LinearConsoleNode::push_node(std::unique_ptr<StatusNode> child_) {
    if (child) throw StringException("LinearConsoleNode::push_node()", "Attempted to fork a linear status chain.");
    child = std::move(child_);
}

LinearConsoleIteration::LinearConsoleIteration(LinearConsoleRoot& root_, StatusCell cell, std::uint64_t total,
                                               IterationMode mode, bool colored_)
    : root(root_), number(cell.text, total, mode), colored(colored_) {
    root.push_cell(std::move(cell));
}

LinearConsoleIteration::~LinearConsoleIteration() { root.pop_cells(pushed_cells); }

Object LinearConsoleIteration::get_tree() const {
    throw StringException("LinearConsoleIteration::get_tree()", "Polling is not supported.");
}

StatusNode& LinearConsoleIteration::make_node(StatusCell) { return make_node(); }

StatusNode& LinearConsoleIteration::make_node() {
    push_node(nullptr);
    return *this;
}

StatusIteration& LinearConsoleIteration::make_iteration(StatusCell, std::uint64_t, IterationMode, bool) {
    throw StringException("LinearConsoleIteration::make_iteration()", "Iteration stacking is not supported.");
}

void LinearConsoleIteration::push_node(std::unique_ptr<StatusNode>) {
    throw StringException("LinearConsoleIteration::push_node()", "Attempted to extend a linear status chain.");
}

void LinearConsoleIteration::pop_frame(const StatusFrame& frame) {
    if (!frame.children.empty())
        throw StringException("LinearConsoleIteration::pop_frame()", "Attempted to pop a non-existent node.");
    const std::size_t count = std::min(frame.cells, pushed_cells);
    root.pop_cells(count);
    pushed_cells -= count;
}

void LinearConsoleIteration::push_cells(std::vector<StatusCell> cells) {
    for (StatusCell& cell : cells) push_cell(std::move(cell));
}

void LinearConsoleIteration::push_cell(StatusCell cell) {
    root.push_cell(std::move(cell));
    ++pushed_cells;
}

void LinearConsoleIteration::update(bool force) {
    if (!root.refresh_due(force)) return;
    const StatusCell shown{colored ? 'G' : 'w', number.text(completed.load())};
    root.draw(force, &shown);
}

std::uint64_t LinearConsoleIteration::get_completed() const {
    throw StringException("LinearConsoleIteration::get_completed()", "Polling is not supported.");
}

void LinearConsoleIteration::advance(std::uint64_t count) {
    completed.fetch_add(count, std::memory_order_relaxed);
    update();
}

void LinearConsoleIteration::set_completed(std::uint64_t count) {
    completed.store(count, std::memory_order_relaxed);
    update();
}

} // namespace zvp
