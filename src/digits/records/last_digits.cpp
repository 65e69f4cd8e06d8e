#include "digits/records/last_digits.h"

#include "app/console/console.h"
#include "app/console/number_forms.h"
#include "app/failure/exceptions.h"
#include "digits/records/digit_text.h"

#include <algorithm>

namespace zvp {

namespace {

constexpr std::size_t line_digits = 50;
constexpr std::size_t group_digits = 10;

/// A blank behind every group.
std::string grouped(std::string_view digits) {
    std::string text;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        text += digits[i];
        if ((i + 1) % group_digits == 0) text += ' ';
    }
    return text;
}

/// show(line, position behind it) for each line; the position is 0 where the line isn't full.
template <class Show>
void for_each_line(const LastDigits& digits, Show&& show) {
    const std::string_view text = digits.text;
    for (std::size_t i = 0; i < text.size(); i += line_digits) {
        const std::string_view line = text.substr(i, line_digits);
        show(grouped(line), line.size() == line_digits ? digits.start + i + line_digits : 0);
    }
}

} // namespace

void LastDigits::set(std::uint64_t total_digits, DigitViewer2::BasicDigitReader& reader) {
    if (reader.radix != 10 && reader.radix != 16)
        throw InvalidParametersException("LastDigits::set()", "Invalid Radix.");
    const std::uint64_t first = total_digits < 101 ? 0 : (total_digits - 51) - (total_digits - 51) % line_digits;
    const std::string digits = read_digit_text(reader, first, total_digits - first);
    start = first;
    radix = reader.radix;
    *std::copy(digits.begin(), digits.end(), text) = '\0';
}

std::string_view LastDigits::label() const {
    if (radix == 10) return "Last Decimal Digits:";
    if (radix == 16) return "Last Hexadecimal Digits:";
    return "Last Digits:";
}

std::string LastDigits::file_text() const {
    std::string block = std::string(label()) + "\r\n";
    for_each_line(*this, [&](const std::string& line, std::uint64_t position) {
        block += line;
        if (position != 0) block += " :  " + format_number(position, NumberForm::commas) + "\r\n";
    });
    return block + "\r\n";
}

void LastDigits::print() const {
    for_each_line(*this, [](std::string line, std::uint64_t position) {
        if (position != 0) line.pop_back(); // the blank belongs to what follows
        zvp::print(line, 'Y');
        if (position != 0) {
            zvp::print("  : ", 'w');
            zvp::print(format_number(position, NumberForm::commas), 'G');
        }
        print_line();
    });
    set_color('w');
}

} // namespace zvp
