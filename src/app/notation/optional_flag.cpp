#include "app/notation/optional_flag.h"

#include "app/failure/exceptions.h"

#include <array>

namespace zvp {

namespace {

struct FlagRow {
    std::string_view word;
    std::string_view display;
    char color;
};

constexpr std::array<FlagRow, 3> rows{
    {{"disabled", "Disabled", 'R'}, {"attempt", "Attempt", 'Y'}, {"forced", "Forced", 'G'}}};

} // namespace

OptionalFlagConfig OptionalFlagConfig::load(const Object& object, std::string key) {
    const std::string& word = object.get_string(key);
    for (std::size_t i = 0; i < rows.size(); ++i)
        if (rows[i].word == word) return {std::move(key), static_cast<OptionalFlag>(i)};
    throw InvalidParametersException("OptionalFlagConfig", "Invalid Mode: " + word);
}

void OptionalFlagConfig::save(Object& object) const {
    object.add_string(key, std::string(rows[static_cast<std::size_t>(value)].word));
}

std::string_view OptionalFlagConfig::display_name() const { return rows[static_cast<std::size_t>(value)].display; }

char OptionalFlagConfig::display_color() const { return rows[static_cast<std::size_t>(value)].color; }

} // namespace zvp
