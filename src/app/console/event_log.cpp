#include "app/console/event_log.h"

#include <cstdio>

namespace zvp {

EventLog::EventLog() : opened(platform::performance_counter()) {}

void EventLog::log(std::string_view text) {
    char seconds[40];
    std::snprintf(seconds, sizeof(seconds), "%.3f",
                  static_cast<double>(platform::performance_counter() - opened) * 1e-9);
    lines += platform::local_time_text();
    lines += '\t';
    lines += seconds;
    lines += '\t';
    lines += text;
    lines += "\r\n";
}

} // namespace zvp
