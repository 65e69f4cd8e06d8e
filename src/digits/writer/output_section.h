#pragma once

#include "app/console/run_report.h"

#include <string>

namespace zvp {

/// A step of the output: its line on the console, its entry in the log, the label of its status line, and its time at
/// the end of the scope.
class OutputSection {
public:
    OutputSection(const RunReport& report, const std::string& name) : task(report, name, name) {
        if (StatusNode* node = task.node()) node->push_cell({'w', name + ": "});
    }

    /// Null without a sink.
    StatusNode* node() const { return task.node(); }

private:
    const ReportedTask task;
};

} // namespace zvp
