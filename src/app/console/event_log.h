#pragma once
// What happened in a run and when, as text for the report that proves it.

#include "platform/clock.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace zvp {

/// Append-only; one thread; with a file if one is attached. An entry is one line: local date and time, a tab, the seconds since the log was opened with
/// 3 decimals, a tab, the text, CR and LF.
class EventLog {
public:
    EventLog();
    virtual ~EventLog();
    EventLog(const EventLog&) = delete;
    EventLog& operator=(const EventLog&) = delete;

    virtual void log(std::string_view text);

    /// Writes what was logged so far to the file, which is emptied first, and every later entry at once, so that it tells
    /// how far a run came that didn't end. Raises FileException. A file that can't be written to later is given up: no
    /// run ends for its log.
    void attach(const std::string& path);

    const std::string& text() const { return lines; }

private:
    void write(std::string_view entries);
    void close();

    const std::uint64_t opened;
    std::string lines;
    int file = -1;
    std::uint64_t file_bytes = 0;
};

} // namespace zvp
