#include "bbp/bbp_report.h"

#include "app/console/console.h"
#include "app/console/cpu_usage.h"
#include "app/console/number_forms.h"
#include "platform/clock.h"
#include "platform/threads.h"

namespace BBPv2 {

namespace {

using zvp::NumberForm;

constexpr std::size_t label_width = 24;
constexpr std::size_t group_digits = 8; // one word
constexpr std::size_t groups_per_line = 8;

void print_field(std::string_view label, std::string_view value) {
    zvp::print_labelm_line(label_width, label, value, 'G');
}

/// Prints digits in as few pieces as their colours allow; `mark` stands after the requested ones.
class DigitPrinter {
public:
    DigitPrinter(std::uint32_t requested_, std::string_view mark_) : requested(requested_), mark(mark_) {}
    ~DigitPrinter() { flush(); }
    DigitPrinter(const DigitPrinter&) = delete;
    DigitPrinter& operator=(const DigitPrinter&) = delete;

    void digit(char c) {
        if (printed == requested) flush();
        pending += c;
        if (++printed == requested) pending += mark;
    }

    void text(std::string_view blanks) {
        pending += blanks;
        if (pending.size() >= 4096) flush();
    }

private:
    void flush() {
        zvp::print(pending, printed <= requested ? 'G' : 'R');
        pending.clear();
    }

    std::string pending;
    const std::uint32_t requested;
    const std::string_view mark;
    std::uint64_t printed = 0;
};

} // namespace

std::string record_text(const TermRecord& record) {
    return "Frac( 1/(" + std::to_string(record.a) + "k + " + std::to_string(record.b) + ") * 2^("
           + std::to_string(record.step) + "k + " + std::to_string(record.start) + ") )";
}

void print_run_header(const zorvane::BBPSession& session) {
    zvp::print_line();
    print_field("Formula: ", formula_name(static_cast<Formula>(session.algorithm)));
    print_field("Hexadecimal Offset: ", zvp::format_number(session.offset, NumberForm::commas));
    print_field("Digits to Compute: ", zvp::format_number(session.digits, NumberForm::commas));
    zvp::print_line();
    print_field("Threads: ", std::to_string(session.threads) + (session.pin ? "  (pinned to cores)" : ""));
    zvp::print_line();
    print_field("Terms Needed: ", zvp::format_number(session.terms, NumberForm::commas));
    print_field("Internal Precision: ",
                zvp::format_number(std::uint64_t{session.words} * 8, NumberForm::commas) + " Hexadecimal Digits");
    zvp::print_line();
    print_field("Start Time: ", zvp::platform::local_time_text());
}

void print_run_times(double wall_seconds, double user_seconds, double kernel_seconds) {
    zvp::print_line();
    print_field("End Time: ", zvp::platform::local_time_text());
    print_field("Total Time: ", zvp::format_seconds(wall_seconds));
    zvp::print_cpu_usage(wall_seconds, user_seconds, kernel_seconds,
                         static_cast<std::uint32_t>(zvp::platform::usable_cores().size()));
}

void print_digits(const FractionFloat& fraction, std::uint64_t offset, std::uint32_t digits) {
    zvp::print_line();
    zvp::print("Green", 'G');
    zvp::print_line(" = Requested digits that should be correct.", 'w');
    zvp::print("Red ", 'R');
    zvp::print_line(" = Extra working precision. May not be correct.", 'w');
    const bool colors = zvp::colors_shown();
    if (!colors) zvp::print_line("|    = End of the requested digits.");
    zvp::print_line();
    zvp::print_line("Hexadecimal Digits starting from: 16^-" + std::to_string(offset + 1));
    zvp::print_line();
    {
        DigitPrinter printer(digits, colors ? "" : "|");
        for (std::size_t word = 0; word < fraction.length(); ++word) {
            printer.text(word % groups_per_line == 0 ? (word == 0 ? "  " : "\n  ") : " ");
            for (std::size_t i = group_digits; i-- > 0;)
                printer.digit("0123456789ABCDEF"[fraction.words[word] >> (4 * i) & 15]);
        }
        printer.text("\n");
    }
    zvp::set_color('w');
}

} // namespace BBPv2
