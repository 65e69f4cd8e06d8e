#include "app/console/text_width.h"

#include <algorithm>

namespace zvp {

namespace {

bool continues_character(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

} // namespace

std::size_t column_count(std::string_view text) {
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return !continues_character(c); }));
}

std::string fit_left(std::string_view text, std::size_t columns) {
    std::size_t used = 0;
    std::size_t end = 0;
    for (; end < text.size(); ++end) {
        if (continues_character(text[end])) continue;
        if (used == columns) break;
        ++used;
    }
    return std::string(text.substr(0, end)) + std::string(columns - used, ' ');
}

std::string pad_left(std::string_view text, std::size_t columns) {
    const std::size_t used = column_count(text);
    return std::string(used < columns ? columns - used : 0, ' ') + std::string(text);
}

} // namespace zvp
