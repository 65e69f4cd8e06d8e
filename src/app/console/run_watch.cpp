#include "app/console/run_watch.h"

#include "app/console/console.h"
#include "app/console/console_lock.h"
#include "app/console/number_forms.h"
#include "platform/clock.h"
#include "platform/console_io.h"
#include "platform/process.h"
#include "platform/threads.h"

#include <mutex>
#include <system_error>
#include <vector>

namespace zvp {

namespace {

/// What the watcher prints. Changed a few times in a run, so that the lock costs nothing.
struct RunningWork {
    std::mutex mutex;
    std::string what;
    std::string task;
    std::vector<std::string> files;
    std::uint64_t began = 0;
};

RunningWork& running_work() {
    static RunningWork work;
    return work;
}

[[noreturn]] void end_interrupted() {
    constexpr unsigned patience_milliseconds = 1000; // what holds the console lock may be stuck
    RunningWork& work = running_work();
    const std::lock_guard lock(work.mutex);
    console_mutex().try_lock_in_fault(patience_milliseconds);
    if (platform::output_is_terminal()) print("\n"); // the status line stays
    const double seconds = static_cast<double>(platform::performance_counter() - work.began) * 1e-9;
    print_line("Interrupted: " + work.what + (work.task.empty() ? "" : ", in \"" + work.task + "\"") + ", after "
                   + format_seconds(seconds),
               'Y');
    for (const std::string& file : work.files) print_line("Incomplete file: " + file, 'Y');
    reset_color();
    platform::end_process(interrupted_exit_code);
}

} // namespace

RunWatch::RunWatch(std::string_view what) {
    {
        RunningWork& work = running_work();
        const std::lock_guard lock(work.mutex);
        work.what = what;
        work.began = platform::performance_counter();
    }
    try {
        watcher = std::thread([this] {
            const platform::FaultStack fault_stack;
            if (gate.wait()) end_interrupted();
        });
    } catch (const std::system_error&) {
        gate.close();
    }
}

RunWatch::~RunWatch() {
    gate.close();
    if (watcher.joinable()) watcher.join();
}

void note_running_task(std::string_view line) {
    RunningWork& work = running_work();
    const std::lock_guard lock(work.mutex);
    work.task = line;
}

FileInProgress::FileInProgress(std::string path) {
    RunningWork& work = running_work();
    const std::lock_guard lock(work.mutex);
    work.files.push_back(std::move(path));
}

FileInProgress::~FileInProgress() {
    RunningWork& work = running_work();
    const std::lock_guard lock(work.mutex);
    work.files.pop_back();
}

} // namespace zvp
