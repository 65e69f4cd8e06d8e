#include "parallel/memory/flag_selector.h"

#include "app/console/console.h"
#include "app/console/text_width.h"

#include <string>

namespace zvp {

void print_allocator_row(std::uint32_t row, std::string_view label, std::string_view value, char color) {
    constexpr std::size_t label_width = 36;
    print_labelm_line(label_width, pad_left(std::to_string(row), 4) + std::string(label), value, color);
}

void OptionalFlagSelector::cycle() {
    switch (flag.value) {
    case OptionalFlag::disabled: flag.value = OptionalFlag::attempt; break;
    case OptionalFlag::attempt: flag.value = OptionalFlag::forced; break;
    case OptionalFlag::forced: flag.value = OptionalFlag::disabled; break;
    }
}

void OptionalFlagSelector::print_row(const OptionalFlagConfig& flag, std::uint32_t row, std::string_view label) {
    print_allocator_row(row, label, flag.display_name(), flag.display_color());
}

void OptionalFlagSelector::save_full(const OptionalFlagConfig& flag, Object& object) {
    Object plain;
    flag.save(plain);
    Object shown;
    shown.add_string("Value", plain.get_string(flag.key));
    shown.add_string("DisplayText", std::string(flag.display_name()));
    shown.add_string("DisplayColor", std::string(1, flag.display_color()));
    object.add_object(flag.key, std::move(shown));
}

} // namespace zvp
