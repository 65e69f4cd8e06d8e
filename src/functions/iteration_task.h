#pragma once
// An iterative function as a task of a computation's status.

#include "app/console/status.h"

#include <string_view>

namespace zvp {

/// Calls run(node) as a task of `sink` that begins with `line` and ends with its time; the cells of `node` stand behind
/// "Iterating: ". Without a sink, run(nullptr).
template <class Run>
void run_as_task(StatusSink* sink, std::string_view line, Run&& run) {
    if (!sink) return run(static_cast<StatusNode*>(nullptr));
    StatusTask task(*sink, line);
    task.node.push_cell({'w', "Iterating: "});
    run(&task.node);
}

} // namespace zvp
