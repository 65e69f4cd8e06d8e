#include "app/console/linear_network_status.h"

#include "app/failure/exceptions.h"

#include <algorithm>

namespace zvp {

namespace {

Object tree_of(const std::vector<StatusCell>& cells, Array children) {
    Array text;
    for (const StatusCell& cell : cells) {
        Object piece;
        piece.add_string("Color", std::string(1, cell.color));
        piece.add_string("Text", cell.text);
        text.push(piece.move_out());
    }
    Object tree;
    tree.add_array("Text", std::move(text));
    tree.add_array("Children", std::move(children));
    return tree;
}

void pop_cells(std::vector<StatusCell>& cells, std::size_t count) {
    cells.resize(cells.size() - std::min(count, cells.size()));
}

void append(std::vector<StatusCell>& cells, std::vector<StatusCell> more) {
    std::move(more.begin(), more.end(), std::back_inserter(cells));
}

} // namespace

LinearNetworkNode::~LinearNetworkNode() {
    const std::lock_guard lock(tree_lock);
    child.reset();
}

Object LinearNetworkNode::get_tree() const {
    const std::lock_guard lock(tree_lock);
    Array children;
    if (child) children.push(child->get_tree().move_out());
    return tree_of(cells, std::move(children));
}

StatusNode& LinearNetworkNode::make_node(StatusCell cell) {
    auto node = std::make_unique<LinearNetworkNode>(tree_lock);
    StatusNode& made = *node;
    made.push_cell(std::move(cell));
    push_node(std::move(node));
    return made;
}

StatusNode& LinearNetworkNode::make_node() {
    auto node = std::make_unique<LinearNetworkNode>(tree_lock);
    StatusNode& made = *node;
    push_node(std::move(node));
    return made;
}

StatusIteration& LinearNetworkNode::make_iteration(StatusCell cell, std::uint64_t total, IterationMode mode,
                                                   bool colored) {
    auto iteration = std::make_unique<LinearNetworkIteration>(tree_lock, std::move(cell), total, mode, colored);
    StatusIteration& made = *iteration;
    push_node(std::move(iteration));
    return made;
}

void LinearNetworkNode::pop_frame(const StatusFrame& frame) {
    const std::lock_guard lock(tree_lock);
    for (const StatusNode* popped : frame.children) {
        if (!child || popped != child.get())
            throw StringException("LinearNetworkNode::pop_frame()", "Attempted to pop a non-existent node.");
        child.reset();
    }
    pop_cells(cells, frame.cells);
}

void LinearNetworkNode::push_cells(std::vector<StatusCell> more) {
    const std::lock_guard lock(tree_lock);
    append(cells, std::move(more));
}

void LinearNetworkNode::push_cell(StatusCell cell) {
    const std::lock_guard lock(tree_lock);
    cells.push_back(std::move(cell));
}

void LinearNetworkNode::push_node(std::unique_ptr<StatusNode> child_) {
    const std::lock_guard lock(tree_lock);
    if (child) throw StringException("LinearNetworkNode::push_node()", "Attempted to fork a linear status chain.");
    child = std::move(child_);
}

LinearNetworkIteration::LinearNetworkIteration(StatusTreeLock& lock_, StatusCell cell, std::uint64_t total,
                                               IterationMode mode, bool colored_)
    : tree_lock(lock_), number(cell.text, total, mode), colored(colored_) {
    cells.push_back(std::move(cell));
}

Object LinearNetworkIteration::get_tree() const {
    const std::lock_guard lock(tree_lock);
    std::vector<StatusCell> shown = cells;
    if (std::string text = number.text(get_completed()); !text.empty())
        shown.push_back({colored ? 'G' : 'w', std::move(text)});
    return tree_of(shown, {});
}

StatusNode& LinearNetworkIteration::make_node(StatusCell) { return make_node(); }

StatusNode& LinearNetworkIteration::make_node() {
    push_node(nullptr);
    return *this;
}

StatusIteration& LinearNetworkIteration::make_iteration(StatusCell, std::uint64_t, IterationMode, bool) {
    throw StringException("LinearNetworkIteration::make_iteration()", "Iteration stacking is not supported.");
}

void LinearNetworkIteration::push_node(std::unique_ptr<StatusNode>) {
    throw StringException("LinearNetworkIteration::push_node()", "Attempted to extend a linear status chain.");
}

void LinearNetworkIteration::pop_frame(const StatusFrame& frame) {
    if (!frame.children.empty())
        throw StringException("LinearNetworkIteration::pop_frame()", "Attempted to pop a non-existent node.");
    const std::lock_guard lock(tree_lock);
    pop_cells(cells, frame.cells);
}

void LinearNetworkIteration::push_cells(std::vector<StatusCell> more) {
    const std::lock_guard lock(tree_lock);
    append(cells, std::move(more));
}

void LinearNetworkIteration::push_cell(StatusCell cell) {
    const std::lock_guard lock(tree_lock);
    cells.push_back(std::move(cell));
}

} // namespace zvp
