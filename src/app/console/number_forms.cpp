#include "app/console/number_forms.h"

#include "app/console/text_width.h"

#include <array>
#include <cstdio>

namespace zvp {

namespace {

constexpr std::array units{" bytes", " KiB", " MiB", " GiB", " TiB", " PiB", " EiB"};

std::string with_commas(std::string digits) {
    for (std::size_t at = digits.size(); at > 3;) {
        at -= 3;
        digits.insert(at, 1, ',');
    }
    return digits;
}

/// Thousandths of a unit with three significant digits in four columns. `carry` tells that the value rounded up
/// to 1000 of its unit and is told as 0.98 of the next.
std::string significant_digits(std::uint64_t thousandths, bool& carry) {
    const auto fixed = [](std::uint64_t hundredths) {
        const std::string rest = std::to_string(hundredths % 100);
        return std::to_string(hundredths / 100) + (rest.size() < 2 ? ".0" : ".") + rest;
    };
    if (thousandths < 1000) return thousandths + 5 >= 1000 ? "1.00" : fixed((thousandths + 5) / 10);
    if (thousandths < 10'000) return thousandths + 5 >= 10'000 ? "10.0" : fixed((thousandths + 5) / 10);
    if (thousandths < 100'000) {
        const std::uint64_t tenths = (thousandths + 50) / 100;
        return tenths >= 1000 ? " 100" : std::to_string(tenths / 10) + "." + std::to_string(tenths % 10);
    }
    const std::uint64_t ones = (thousandths + 500) / 1000;
    carry = ones >= 1000;
    return carry ? "0.98" : " " + std::to_string(ones);
}

} // namespace

std::string format_number(std::uint64_t value, NumberForm form) {
    const std::string digits = std::to_string(value);
    switch (form) {
    case NumberForm::plain: return digits;
    case NumberForm::commas: return with_commas(digits);
    case NumberForm::bytes: return format_bytes(value);
    case NumberForm::commas_and_bytes: return with_commas(digits) + " (" + format_bytes(value) + ")";
    }
    return digits;
}

std::string format_signed(std::int64_t value, NumberForm form) {
    if (value >= 0) return format_number(static_cast<std::uint64_t>(value), form);
    return "-" + format_number(0 - static_cast<std::uint64_t>(value), form);
}

std::string format_bytes(std::uint64_t bytes) {
    if (bytes < 1000) return pad_left(std::to_string(bytes), 3) + units[0];
    std::size_t unit = 1;
    for (; bytes >= 1'024'000; bytes >>= 10) ++unit;
    bool carry = false;
    const std::string digits = significant_digits(bytes * 1000 / 1024, carry);
    return digits + units[carry ? unit + 1 : unit];
}

std::string format_seconds(double seconds) {
    std::string text = format_fixed(seconds, 3) + " seconds  ( ";
    if (seconds < 7200) return text + format_fixed(seconds / 60, 3) + " minutes )";
    if (seconds < 172'800) return text + format_fixed(seconds / 3600, 3) + " hours )";
    return text + format_fixed(seconds / 86'400, 3) + " days )";
}

std::string format_fixed(double value, unsigned decimals) {
    std::array<char, 400> text; // the longest double in fixed notation has 309 digits before the point
    const int length = std::snprintf(text.data(), text.size(), "%.*f", static_cast<int>(decimals), value);
    return {text.data(), static_cast<std::size_t>(length)};
}

} // namespace zvp
