#include "app/console/prompts.h"

#include "app/console/console.h"
#include "app/console/value_parsers.h"

namespace zvp {

std::string prompt_line(std::string_view label, char color) {
    print(label, color == ' ' ? ' ' : 'w');
    std::string line = read_line(color);
    if (color != ' ') set_color('w');
    return line;
}

namespace {

/// Asks until the answer is a number, for the parser of its kind.
std::string prompt_number(std::string_view label, NumberKind kind, char color) {
    for (;;) {
        const std::string line = prompt_line(label, color);
        TypedNumber number(line, kind);
        if (number.unread.empty()) return std::move(number.text);
        print_line(invalid_number_text(line, number), 'R');
        set_color('w');
    }
}

} // namespace

std::uint64_t prompt_int64(std::string_view label, std::uint64_t lo, std::uint64_t hi, char color) {
    for (;;) {
        const std::uint64_t value = parse_uL(prompt_number(label, NumberKind::integer, color));
        if (value >= lo && value <= hi) return value;
    }
}

std::int64_t prompt_signed(std::string_view label, char color) {
    return parse_sL(prompt_number(label, NumberKind::signed_integer, color));
}

std::uint32_t prompt_int(std::string_view label, std::uint32_t lo, std::uint32_t hi, char color) {
    return static_cast<std::uint32_t>(prompt_int64(label, lo, hi, color));
}

std::uint32_t prompt_option(std::uint32_t lo, std::uint32_t hi) {
    for (;;) {
        const std::uint32_t option = prompt_int("option: ", lo, hi, 'T');
        if (!input_has_ended()) return option;
    }
}

std::uint64_t prompt_size(std::string_view label, char color) {
    return parse_bytes(prompt_number(label, NumberKind::bytes, color));
}

std::uint64_t prompt_digits(std::string_view label, std::uint64_t lo, std::uint64_t hi) {
    print("Enter the number of digits: (e.g. \"1000000\", \"25m\", \"10b\")\n"
          "Suffixes:\n"
          "    m = 1,000,000         ( 10^6 )\n"
          "    b = 1,000,000,000     ( 10^9 )\n"
          "    t = 1,000,000,000,000 ( 10^12 )\n"
          "    K = 1,024             ( 2^10 )\n"
          "    M = 1,048,576         ( 2^20 )\n"
          "    G = 1,073,741,824     ( 2^30 )\n"
          "    T = 1,099,511,627,776 ( 2^40 )\n");
    for (;;) {
        const std::uint64_t value = parse_menu_digits(prompt_number(label, NumberKind::menu_digits, 'T'));
        if (value >= lo && value <= hi) return value;
    }
}

} // namespace zvp
