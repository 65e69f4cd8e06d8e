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

std::uint64_t prompt_int64(std::string_view label, std::uint64_t lo, std::uint64_t hi, char color) {
    for (;;) {
        const std::uint64_t value = parse_uL(prompt_line(label, color));
        if (value >= lo && value <= hi) return value;
    }
}

std::uint32_t prompt_int(std::string_view label, std::uint32_t lo, std::uint32_t hi, char color) {
    return static_cast<std::uint32_t>(prompt_int64(label, lo, hi, color));
}

std::uint64_t prompt_size(std::string_view label, char color) { return parse_bytes(prompt_line(label, color)); }

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
        const std::uint64_t value = parse_menu_digits(prompt_line(label, 'T'));
        if (value >= lo && value <= hi) return value;
    }
}

} // namespace zvp
