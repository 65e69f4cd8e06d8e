#include "parallel/topology/core_list.h"

#include "app/console/console.h"
#include "app/console/text_width.h"
#include "app/console/value_parsers.h"
#include "app/failure/exceptions.h"

#include <algorithm>
#include <iterator>

namespace zvp {

std::string core_list_text(const CoreSet& cores, std::size_t indent, std::size_t width) {
    const std::string margin(indent, ' ');
    if (cores.empty()) return margin + "(none)\n";
    std::string text = margin;
    std::size_t used = indent;
    for (auto first = cores.begin(); first != cores.end();) {
        auto last = first;
        for (auto next = std::next(last); next != cores.end() && *next == *last + 1; ++next) last = next;
        std::string range = std::to_string(*first);
        if (last != first) range += "-" + std::to_string(*last);
        range += " ";
        if (used > indent && used + range.size() > width) {
            text += "\n" + margin;
            used = indent;
        }
        text += range;
        used += range.size();
        first = std::next(last);
    }
    return text + "\n";
}

void print_core_list(std::string_view label, const CoreSet& cores, std::size_t width) {
    const std::size_t indent = column_count(label);
    print(std::string(label) + core_list_text(cores, indent, width).substr(indent));
}

CoreRange parse_core_range(std::string_view text) {
    const std::size_t dash = std::min(text.find('-'), text.size());
    const std::string_view first = text.substr(0, dash);
    const std::string_view last = dash == text.size() ? first : text.substr(dash + 1);
    for (const std::string_view number : {first, last})
        if (number.empty() || number.find_first_not_of("0123456789") != std::string_view::npos)
            throw ParseException("parse_core_range()", "Expected a core # or a range such as 4-7.");
    const CoreRange range{parse_u32(first), parse_u32(last)};
    if (range.last < range.first)
        throw ParseException("parse_core_range()", "The last core of a range must not be below the first.");
    return range;
}

} // namespace zvp
