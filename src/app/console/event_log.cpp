#include "app/console/event_log.h"

#include "app/failure/file_exceptions.h"
#include "platform/file_system.h"

#include <cstdio>

namespace zvp {

EventLog::EventLog() : opened(platform::performance_counter()) {}

void EventLog::log(std::string_view text) {
    char seconds[40];
    std::snprintf(seconds, sizeof(seconds), "%.3f",
                  static_cast<double>(platform::performance_counter() - opened) * 1e-9);
    std::string entry = platform::local_time_text();
    ((entry += '\t') += seconds) += '\t';
    (entry += text) += "\r\n";
    lines += entry;
    write(entry);
}

EventLog::~EventLog() { close(); }

void EventLog::attach(const std::string& path) {
    close();
    platform::FileOpening opening;
    opening.write = opening.create = true;
    const platform::OpenedFile opened_file = platform::file_system().open(path, opening);
    int error = opened_file.error;
    if (error == 0) {
        file = opened_file.file;
        error = platform::file_system().set_length(file, 0);
    }
    if (error != 0) {
        close();
        throw FileIO::FileException("EventLog::attach()", with_system_error("Unable to create file.", error), path,
                                    error);
    }
    file_bytes = 0;
    write(lines);
}

void EventLog::write(std::string_view entries) {
    if (file < 0) return;
    const platform::MovedBytes moved =
        platform::file_system().write_at(file, entries.data(), entries.size(), file_bytes);
    file_bytes += moved.bytes;
    if (moved.error != 0 || moved.bytes < entries.size()) close();
}

void EventLog::close() {
    if (file >= 0) platform::file_system().close(file);
    file = -1;
}

} // namespace zvp
