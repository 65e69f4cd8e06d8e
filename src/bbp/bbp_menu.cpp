// The extractor's menu.

#include "bbp/bbp_session.h"

#include "app/console/banner.h"
#include "app/console/build_info.h"
#include "app/console/console.h"
#include "app/console/number_forms.h"
#include "app/console/prompts.h"
#include "platform/processor_features.h"

namespace zorvane {

namespace {

using zvp::NumberForm;
using zvp::print_line;

constexpr std::size_t label_width = 32;

void print_field(std::string_view label, std::string_view value, char color = 'G') {
    zvp::print_labelm_line(label_width, label, value, color);
}

} // namespace

void BBPSession::print_menu() const {
    print_line();
    print_line("BBP Digit Extractor for Pi  -  zorvane v" + zvp::version_text(), 'Y');
    zvp::print_tuning();
    zvp::print_labelc("Processor(s)", zvp::platform::processor_name(), 't');
    zvp::set_color('w');
    print_line("\n");
    print_line("  1     Formula:  " + std::string(BBPv2::formula_name(formula())));
    print_line();
    print_line(BBPv2::formula_display(formula()), 'T');
    zvp::set_color('w');
    print_field("  2     Hexadecimal Offset:", zvp::format_number(offset, NumberForm::commas));
    print_field("  3     Digits to Compute:", zvp::format_number(digits, NumberForm::commas));
    print_line();
    print_field("        Internal Precision:", zvp::format_number(std::uint64_t{words} * 8, NumberForm::commas), 'Y');
    print_field("        Terms Needed:", zvp::format_number(terms, NumberForm::commas), 'Y');
    print_field("        Largest Divisor:", zvp::format_number(largest_divisor, NumberForm::commas), 'Y');
    print_line();
    print_field("  4     Multi-Threading:", std::to_string(threads) + (threads == 1 ? " thread" : " threads"));
    print_field("  5     Pin Threads to Cores:", pin ? "Yes" : "No");
    const std::string letters = std::string(mode_a ? "A" : "") + (mode_a && mode_b ? " " : "") + (mode_b ? "B" : "");
    print_field("  6     Modes:", letters.empty() ? "None" : letters, letters.empty() ? 'R' : 'G');
    print_line();
    std::string reason;
    if (can_start(reason)) {
        print_line("  0     Start Computation!", 'Y');
    } else {
        print_line("        Cannot Start: " + reason, 'R');
    }
    zvp::set_color('w');
    print_line();
}

void BBPSession::menu() {
    std::string reason;
    std::uint32_t option;
    do {
        print_menu();
        do {
            option = zvp::prompt_option(0, 6);
        } while (option == 0 && !can_start(reason));
        apply_option(option);
        update_settings();
    } while (option != 0);
}

void BBPSession::apply_option(std::uint32_t option) {
    print_line();
    switch (option) {
    case 1: formula_menu(); break;
    case 2:
        print_line("Select the hexadecimal offset:");
        offset = zvp::prompt_int64("Offset: ", 0, max_offset, 'T');
        break;
    case 3:
        print_line("Select the # of digits to compute after the offset:");
        digits = zvp::prompt_int("Digits: ", min_digits, max_digits, 'T');
        break;
    case 4:
        print_line("Select the # of threads to use:");
        threads = zvp::prompt_int("Threads: ", 1, max_threads, 'T');
        break;
    case 5: pin = !pin; break;
    case 6: modes_menu(); break;
    default: break;
    }
}

void BBPSession::formula_menu() {
    print_line("Select the formula:");
    print_line();
    print_line("   0     Original 4-term BBP", 'G');
    print_line(BBPv2::formula_display(BBPv2::Formula::bbp_4_terms), 'w');
    print_line("   1     Bellard's 7-term BBP  (~43% faster)", 'G');
    print_line(BBPv2::formula_display(BBPv2::Formula::bellard_7_terms), 'w');
    algorithm = static_cast<std::int32_t>(zvp::prompt_option(0, 1));
}

void BBPSession::modes_menu() {
    for (;;) {
        print_line("Mode Selections", 'Y');
        zvp::set_color('w');
        print_line();
        print_line("The BBP digit extractor has different modes for different ranges of divisor\n"
                   "sizes. Modes that can handle larger divisors tend to be slower.\n"
                   "\n"
                   "By default, all modes are enabled and the program will automatically use\n"
                   "the fastest mode for each term based on the size of its divisor.\n"
                   "\n"
                   "Therefore, there is no need change anything here since the default settings\n"
                   "are the fastest. This menu is primarily a developer feature to force the\n"
                   "program to use the slower modes by selectively disabling the faster ones.\n");
        print_line("  Option    Mode    Divisor Limit    Speed           Status");
        const auto print_mode = [](std::string_view row, bool enabled) {
            zvp::print(row);
            print_line(enabled ? "Enabled" : "Disabled", enabled ? 'G' : 'R');
            zvp::set_color('w');
        };
        print_mode("    1         A       2^49 - 1       Fastest         ", mode_a);
        print_mode("    2         B       2^51 - 1       30% slower      ", mode_b);
        print_line("    3         C       2^61 - 1       2.5x slower     Not Available");
        print_line();
        print_line("  0     Done!");
        print_line();
        switch (zvp::prompt_option(0, 2)) {
        case 0: return;
        case 1: mode_a = !mode_a; break;
        case 2: mode_b = !mode_b; break;
        default: break;
        }
        update_settings();
        print_line();
    }
}

} // namespace zorvane
