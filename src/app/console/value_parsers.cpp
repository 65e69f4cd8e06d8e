#include "app/console/value_parsers.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zvp {

namespace {

constexpr std::uint64_t largest = std::numeric_limits<std::uint64_t>::max();

bool is_digit(char c) { return c >= '0' && c <= '9'; }

std::uint64_t saturating_multiply(std::uint64_t a, std::uint64_t b) {
    std::uint64_t product;
    return __builtin_mul_overflow(a, b, &product) ? largest : product;
}

std::uint64_t saturating_add(std::uint64_t a, std::uint64_t b) {
    std::uint64_t sum;
    return __builtin_add_overflow(a, b, &sum) ? largest : sum;
}

/// Takes the leading digits off `text`.
std::uint64_t take_digits(std::string_view& text, bool skip_commas = false) {
    std::uint64_t value = 0;
    while (!text.empty() && (is_digit(text.front()) || (skip_commas && text.front() == ','))) {
        if (text.front() != ',')
            value = saturating_add(saturating_multiply(value, 10), static_cast<std::uint64_t>(text.front() - '0'));
        text.remove_prefix(1);
    }
    return value;
}

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

std::uint64_t decimal_unit(char suffix) {
    switch (suffix) {
    case 'k': return 1'000;
    case 'm': return 1'000'000;
    case 'b': return 1'000'000'000;
    case 't': return 1'000'000'000'000;
    default: return 0;
    }
}

std::uint64_t binary_unit(char suffix) {
    const std::size_t power = std::string_view("KMGTPE").find(suffix);
    return power == std::string_view::npos ? 0 : std::uint64_t{1} << (10 * (power + 1));
}

} // namespace

std::uint64_t parse_uL(std::string_view text) { return take_digits(text); }

std::int64_t parse_sL(std::string_view text) {
    const bool negative = !text.empty() && text.front() == '-';
    if (negative) text.remove_prefix(1);
    const std::uint64_t magnitude = take_digits(text);
    constexpr auto limit = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    if (!negative) return static_cast<std::int64_t>(std::min(magnitude, limit));
    return magnitude > limit ? std::numeric_limits<std::int64_t>::min() : -static_cast<std::int64_t>(magnitude);
}

std::uint32_t parse_u32(std::string_view text) {
    return static_cast<std::uint32_t>(
        std::min<std::uint64_t>(parse_uL(text), std::numeric_limits<std::uint32_t>::max()));
}

std::int32_t parse_s32(std::string_view text) {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(parse_sL(text), std::numeric_limits<std::int32_t>::min(),
                                                              std::numeric_limits<std::int32_t>::max()));
}

std::uint64_t parse_commas(std::string_view text) { return take_digits(text, true); }

std::uint64_t parse_digits(std::string_view text) {
    const std::uint64_t value = take_digits(text);
    const std::uint64_t unit = text.empty() ? 0 : decimal_unit(lower(text.front()));
    return unit == 0 ? value : saturating_multiply(value, unit);
}

std::uint64_t parse_menu_digits(std::string_view text) {
    const std::uint64_t value = take_digits(text);
    if (text.empty()) return value;
    const char suffix = text.front();
    const std::uint64_t unit = suffix == 'P' || suffix == 'E' ? 0 : std::max(decimal_unit(suffix), binary_unit(suffix));
    return unit == 0 ? value : saturating_multiply(value, unit);
}

std::uint64_t parse_bytes(std::string_view text) {
    const std::uint64_t whole = take_digits(text);
    double fraction = 0;
    if (!text.empty() && text.front() == '.') {
        text.remove_prefix(1);
        double scale = 1;
        for (; !text.empty() && is_digit(text.front()); text.remove_prefix(1)) {
            scale *= 0.1;
            fraction += scale * (text.front() - '0');
        }
    }
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    const char suffix = text.empty() ? '\0' : static_cast<char>(text.front() & ~0x20);
    const std::uint64_t unit = text.empty() ? 0 : binary_unit(suffix);
    if (unit == 0) return whole;
    const auto part = static_cast<std::uint64_t>(std::ceil(fraction * static_cast<double>(unit)));
    return saturating_add(saturating_multiply(whole, unit), part);
}

namespace {

/// Moves the digits at the front of `word` to `text`; of commas, those that part groups of three. Returns whether there
/// were any.
bool move_digits(std::string_view& word, std::string& text) {
    const auto run = [](std::string_view part) { return std::min(part.find_first_not_of("0123456789"), part.size()); };
    std::size_t count = run(word);
    const bool any = count != 0;
    const bool groups = any && count <= 3;
    text += word.substr(0, count);
    word.remove_prefix(count);
    while (groups && !word.empty() && word.front() == ',' && run(word.substr(1)) == 3) {
        text += word.substr(1, 3);
        word.remove_prefix(4);
    }
    return any;
}

void move_one_of(std::string_view& word, std::string& text, std::string_view characters) {
    if (word.empty() || characters.find(word.front()) == std::string_view::npos) return;
    text += word.front();
    word.remove_prefix(1);
}

/// A fraction, blanks, a unit as the program prints it ("KiB") or without "i", without "B". What
/// follows the "B" is passed over, as in "768MBytes".
void move_byte_unit(std::string_view& word, std::string& text, bool& any) {
    if (!word.empty() && word.front() == '.') {
        move_one_of(word, text, ".");
        const std::size_t count = std::min(word.find_first_not_of("0123456789"), word.size());
        any = any || count != 0;
        text += word.substr(0, count);
        word.remove_prefix(count);
    }
    while (!word.empty() && word.front() == ' ') move_one_of(word, text, " ");
    const std::size_t before = text.size();
    move_one_of(word, text, "kmgtpeKMGTPE");
    if (text.size() != before) move_one_of(word, text, "iI");
    if (!word.empty() && (word.front() == 'B' || word.front() == 'b')) word = {};
}

} // namespace

TypedNumber::TypedNumber(std::string_view word, NumberKind kind) {
    word.remove_prefix(std::min(word.find_first_not_of(" \t"), word.size()));
    word = word.substr(0, word.find_last_not_of(" \t") + 1);
    if (word.empty()) return;
    const std::string_view whole = word;
    if (kind == NumberKind::signed_integer) move_one_of(word, text, "-");
    bool any = move_digits(word, text);
    switch (kind) {
    case NumberKind::digits: move_one_of(word, text, "kmbtKMBT"); break;
    case NumberKind::menu_digits: move_one_of(word, text, "kmbtKMGT"); break;
    case NumberKind::bytes: move_byte_unit(word, text, any); break;
    default: break;
    }
    unread = any ? word : whole;
}

std::string invalid_number_text(std::string_view word, const TypedNumber& number) {
    return "Invalid number: " + std::string(word) + "  (not understood: \"" + number.unread + "\")";
}

} // namespace zvp
