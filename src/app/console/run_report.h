#pragma once

#include "app/console/event_log.h"
#include "app/console/status.h"
#include "app/console/tracked_measurements.h"

#include <optional>
#include <string_view>

namespace zvp {

/// Where a computation reports: the lines and the status that a user watches, the log of its phases, and the sum of the
/// time that they take. Each may be absent. Copied freely, owns nothing.
struct RunReport {
    StatusSink* sink = nullptr;
    EventLog* events = nullptr;
    TrackedMeasurements* measurements = nullptr;

    void log(std::string_view text) const {
        if (events != nullptr) events->log(text);
    }
};

/// One phase of a computation, from here to the end of the scope: an entry `event` of the log, and the task that the sink
/// shows, which begins with `line`.
class ReportedTask {
public:
    ReportedTask(const RunReport& report, std::string_view event, std::string_view line) {
        report.log(event);
        if (report.sink != nullptr) task.emplace(*report.sink, line);
    }

    /// The task's first node; null without a sink.
    StatusNode* node() const { return task ? &task->node : nullptr; }

private:
    std::optional<StatusTask> task;
};

} // namespace zvp
