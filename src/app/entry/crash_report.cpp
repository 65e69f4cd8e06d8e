// All but install_crash_filter() runs in a signal handler: no heap, no locks but the console's own.

#include "app/entry/crash_report.h"

#include "app/console/console.h"
#include "app/console/console_lock.h"
#include "app/console/process_switches.h"
#include "platform/clock.h"
#include "platform/console_io.h"
#include "platform/crash_filter.h"
#include "platform/system_error.h"

#include <array>
#include <atomic>
#include <string_view>

namespace zorvane {

namespace {

/// "zorvane-YYYYMMDD-HHMMSS.dmp" in local time.
class RecordName {
public:
    explicit RecordName(const zvp::platform::CalendarTime& t) {
        put("zorvane-");
        put(t.year, 4);
        put(t.month, 2);
        put(t.day, 2);
        put("-");
        put(t.hour, 2);
        put(t.minute, 2);
        put(t.second, 2);
        put(".dmp");
    }

    const char* c_str() const { return text.data(); }

private:
    void put(std::string_view part) {
        for (const char c : part) text[length++] = c;
    }

    void put(int value, std::size_t digits) {
        for (std::size_t i = digits; i-- > 0; value /= 10) text[length + i] = static_cast<char>('0' + value % 10);
        length += digits;
    }

    std::array<char, 64> text{};
    std::size_t length = 0;
};

void report_failure(std::string_view what, int error) {
    zvp::print(what);
    zvp::print(zvp::platform::system_error_text(error));
    zvp::print("\n");
}

constexpr unsigned patience_milliseconds = 1000;

/// The thread that reports a crash. Another thread that faults meanwhile waits for the end that is on its way; a second
/// fault of the same thread, inside its report, goes on after a moment.
std::atomic<long> reporting_thread{0};

void wait_for_other_report() {
    const long self = zvp::platform::current_thread_number();
    long first = 0;
    if (reporting_thread.compare_exchange_strong(first, self)) return;
    do {
        zvp::platform::sleep_milliseconds(patience_milliseconds);
    } while (first != self);
}

void on_fault(const zvp::platform::Fault& fault) {
    wait_for_other_report();
    const bool locked = zvp::console_mutex().try_lock_in_fault(patience_milliseconds);
    zvp::print("\nOops... zorvane has crashed.\n", 'R');
    zvp::print("\nCreating mini-dump file...  ");
    const RecordName name(zvp::platform::local_time_in_signal());
    const zvp::platform::CrashRecordResult result = zvp::platform::write_crash_record(fault, name.c_str());
    if (!result.created) {
        report_failure("Unable to create dump file: ", result.error);
    } else if (result.error != 0) {
        report_failure("Unable to create minidump: ", result.error);
    } else {
        zvp::print("Done!\n\nThe program will now exit.\n");
    }
    zvp::print("\n");
    if (zvp::process_switches().pause_on_fatal_exit) zvp::pause();
    zvp::reset_color();
    if (locked) zvp::console_mutex().unlock();
}

} // namespace

void install_crash_filter() {
    // Learned before a fault, as the handler may not: the UTC offset, and which ends are terminals.
    zvp::platform::local_time();
    zvp::platform::input_is_terminal();
    zvp::platform::output_is_terminal();
    zvp::platform::install_fault_handler(on_fault);
}

} // namespace zorvane
