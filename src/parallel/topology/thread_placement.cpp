#include "parallel/topology/thread_placement.h"

#include "app/console/console.h"
#include "app/console/console_lock.h"
#include "platform/process.h"
#include "platform/threads.h"

#include <algorithm>
#include <array>
#include <mutex>
#include <string>

namespace zvp {

namespace {

struct PriorityLevel {
    std::string_view name;
    int nice; // added to the process's
};

/// Two levels are worth one priority class of the process: 10 nice values downward, 7 upward. The outermost levels reach
/// the ends of the scale from anywhere.
constexpr std::array<PriorityLevel, 7> levels{{{"Idle Priority", 39},
                                               {"Idle Priority", 10},
                                               {"Below Normal Priority", 5},
                                               {"Normal Priority", 0},
                                               {"Above Normal Priority", -4},
                                               {"Highest Priority", -7},
                                               {"Time Critical Priority", -39}}};

const PriorityLevel& priority_level(std::int32_t level) {
    return levels[static_cast<std::size_t>(std::clamp(level, -3, 3) + 3)];
}

void print_value(std::string_view label, const std::string& value) {
    print_labelc(label, value);
    print_line();
}

void print_group_failure(int error, const platform::ThreadAffinity& expected, const platform::ThreadAffinity& actual) {
    const std::lock_guard lock(console_mutex());
    if (expected.bits.empty()) {
        print_warning("GetActiveProcessorCount() returned zero.");
        return;
    }
    print_warning("Warning: Unable to set processor group affinity: " + std::to_string(error));
    print_value("Expected Group", std::to_string(expected.group));
    print_value("Expected Mask ", ProcessorMask(expected.bits).to_hex());
    print_value("Actual Group  ", std::to_string(actual.group));
    print_value("Actual Mask   ", ProcessorMask(actual.bits).to_hex());
    print_line("Further messages of this message will be suppressed.");
}

} // namespace

std::string_view thread_priority_name(std::int32_t level) { return priority_level(level).name; }

void set_thread_priority(std::int32_t level) {
    const int nice = std::clamp(platform::process_nice_value() + priority_level(level).nice, -20, 19);
    if (platform::set_thread_nice(nice) == 0 || level == 0) return;
    const std::lock_guard lock(console_mutex());
    print_warning("Warning: Unable to set thread priority.");
}

void GroupAssigner::assign(std::size_t index) {
    const GroupMap::Entry& group = machine.groups.groups()[index % machine.groups.size()];
    const platform::ThreadAffinity expected{group.number, group.cores.mask().bits()};
    platform::ThreadAffinity actual;
    int error = platform::set_thread_affinity(expected);
    const int read_error = platform::read_thread_affinity(actual);
    if (error == 0) error = read_error;
    if ((error == 0 && actual == expected) || told.exchange(true)) return;
    print_group_failure(error, expected, actual);
}

void assign_thread_to_group(std::size_t index) {
    static GroupAssigner assigner(topology());
    assigner.assign(index);
}

} // namespace zvp
