#pragma once
// What happened in a run and when, as text for the report that proves it.

#include "platform/clock.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace zvp {

/// Append-only; one thread. An entry is one line: local date and time, a tab, the seconds since the log was opened with
/// 3 decimals, a tab, the text, CR and LF.
class EventLog {
public:
    EventLog();

    void log(std::string_view text);

    const std::string& text() const { return lines; }

private:
    const std::uint64_t opened;
    std::string lines;
};

} // namespace zvp
