#include "parallel/memory/flag_selector.h"

#include "parallel/tasks/setting_rows.h"

#include <string>

namespace zvp {

void OptionalFlagSelector::cycle() {
    switch (flag.value) {
    case OptionalFlag::disabled: flag.value = OptionalFlag::attempt; break;
    case OptionalFlag::attempt: flag.value = OptionalFlag::forced; break;
    case OptionalFlag::forced: flag.value = OptionalFlag::disabled; break;
    }
}

void OptionalFlagSelector::print_row(const OptionalFlagConfig& flag, std::uint32_t row, std::string_view label) {
    print_setting_row(row, label, flag.display_name(), flag.display_color());
}

void OptionalFlagSelector::save(const OptionalFlagConfig& flag, Object& object, bool full) {
    if (!full) return flag.save(object);
    Object plain;
    flag.save(plain);
    Object shown;
    shown.add_string("Value", plain.get_string(flag.key));
    shown.add_string("DisplayText", std::string(flag.display_name()));
    shown.add_string("DisplayColor", std::string(1, flag.display_color()));
    object.add_object(flag.key, std::move(shown));
}

} // namespace zvp
