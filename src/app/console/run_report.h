#pragma once

#include "app/console/event_log.h"
#include "app/console/status.h"

#include <string_view>

namespace zvp {

/// Where a computation reports: the lines and the status that a user watches, and the log of its phases. Either may be
/// absent. Copied freely, owns nothing.
struct RunReport {
    StatusSink* sink = nullptr;
    EventLog* events = nullptr;

    void log(std::string_view text) const {
        if (events != nullptr) events->log(text);
    }
};

} // namespace zvp
