#pragma once
// Ctrl-C in a long run: what was running and for how long, and which files it leaves half written.

#include "platform/interrupts.h"

#include <string>
#include <string_view>
#include <thread>

namespace zvp {

/// What a process that Ctrl-C ended returns, by the custom of shells.
inline constexpr int interrupted_exit_code = 130;

/// A run, from here to the end of the scope. The first Ctrl-C prints one line and the files in progress and ends the
/// process with interrupted_exit_code; a second one ends it at once. A thread of its own waits for that, so that the run
/// isn't slowed by looking, and a run that hangs ends as well. One run at a time; without a thread Ctrl-C ends the process
/// silently.
class RunWatch {
public:
    /// `what` runs, as the user knows it.
    explicit RunWatch(std::string_view what);
    ~RunWatch();
    RunWatch(const RunWatch&) = delete;
    RunWatch& operator=(const RunWatch&) = delete;

private:
    platform::InterruptGate gate;
    std::thread watcher;
};

/// Names the task that has begun, for the line of RunWatch; empty when it has ended. Any thread.
void note_running_task(std::string_view line);

/// A file that is being written, from here to the end of the scope.
class FileInProgress {
public:
    explicit FileInProgress(std::string path);
    ~FileInProgress();
    FileInProgress(const FileInProgress&) = delete;
    FileInProgress& operator=(const FileInProgress&) = delete;
};

} // namespace zvp
