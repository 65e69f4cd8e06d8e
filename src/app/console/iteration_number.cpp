#include "app/console/iteration_number.h"

#include "app/console/text_width.h"

namespace zvp {

namespace {

bool leaves_bracket_open(std::string_view label) {
    const std::size_t open = label.rfind('(');
    return open != std::string_view::npos && label.find(')', open) == std::string_view::npos;
}

} // namespace

IterationNumber::IterationNumber(std::string_view label, std::uint64_t total_, IterationMode mode_)
    : total(total_), mode(mode_), opens_bracket(leaves_bracket_open(label)) {}

std::string IterationNumber::text(std::uint64_t completed) const {
    if (mode == IterationMode::percent && total > 0) {
        __extension__ using Wide = unsigned __int128;
        return std::to_string(static_cast<std::uint64_t>(Wide{completed} * 100 / total)) + " %";
    }
    if (mode == IterationMode::fraction) {
        const std::string end = std::to_string(total);
        return pad_left(std::to_string(completed), end.size()) + " / " + end + (opens_bracket ? ")" : "");
    }
    return "";
}

} // namespace zvp
