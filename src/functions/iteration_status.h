#pragma once
// The status cells of one level of an iteration.

#include "app/console/status.h"

#include <cstddef>
#include <utility>

namespace zvp {

/// Shows what a level is doing, on its node; nothing without one. The cells go with the object.
class IterationStatus {
public:
    explicit IterationStatus(StatusNode* node_) : node(node_) {}
    ~IterationStatus() { clear(); }
    IterationStatus(const IterationStatus&) = delete;
    IterationStatus& operator=(const IterationStatus&) = delete;

    /// Calls level(inner) with a node for the next lower level, which the line shows as one more 0.
    template <class Level>
    void descend(Level&& level) {
        if (!node) return level(static_cast<StatusNode*>(nullptr));
        StatusNode& inner = node->make_node({'G', "0"});
        const StatusScope scope(*node, inner);
        node->update();
        level(&inner);
    }

    /// Replaces the cells by a step's label and the size of a number of `words` words.
    void show(const char* label, std::size_t words);

private:
    void clear();

    StatusNode* const node;
    std::size_t cells = 0;
};

} // namespace zvp
