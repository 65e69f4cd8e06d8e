#include "session/run_screen.h"

#include "app/console/console.h"
#include "app/console/cpu_usage.h"
#include "app/console/number_forms.h"

namespace zvp {

namespace {

constexpr std::size_t name_width = 12;
constexpr std::size_t size_width = 22;

void print_seconds(std::string_view label, double seconds) {
    print(label, 'G');
    print_line(format_seconds(seconds), 'Y');
}

} // namespace

void print_run_header(const NormalFloatSessionB& session) {
    const ComputationSize& size = session.settings->size;
    print_line();
    print_labelm_line(name_width, "Constant:", session.name_long, session.display_color);
    print_labelm_line(name_width, "Algorithm:", session.settings->constant->algorithm_name(), 'Y');
    print_line();
    print_labelm_line(size_width, "Decimal Digits:", format_number(size.decimal_digits, NumberForm::commas), 'G');
    print_labelm_line(
        size_width, "Hexadecimal Digits:",
        size.hexadecimal_digits == 0 ? "Disabled" : format_number(size.hexadecimal_digits, NumberForm::commas), 'G');
    print_line();
    print_labelm_line(size_width, "Computation Mode:", "Ram Only", 'R');
    print_labelm_line(size_width, "Multi-Threading:",
                      session.parallelism->framework->summary(session.parallelism->task_decomposition), 'G');
    print_line("\n");
}

void print_run_times(const ComputationTimes& times, std::uint32_t logical_cores) {
    print_line();
    print_labelm_line(name_width, "Start Time:", times.start_date, 'Y');
    print_labelm_line(name_width, "End Time:", times.end_date, 'Y');
    print_line();
    print_seconds("Total Computation Time:     ", times.computation_seconds());
    print_seconds("Start-to-End Wall Time:     ", static_cast<double>(times.wall_milliseconds()) * 1e-3);
    print_line("", 'w');
    const platform::ProcessTimes used = times.processor_seconds();
    print_cpu_usage(times.computation_seconds(), used.user_seconds, used.kernel_seconds, logical_cores);
}

void print_last_digits(const LastDigits& digits, const NormalFloatSession& session) {
    print_line();
    print(std::string(digits.label()) + "  ", 'w');
    print_line(session.name_long, session.display_color);
    digits.print();
}

} // namespace zvp
