#include "session/normal_float_session.h"

#include "app/console/unbuilt.h"

#include <random>

namespace zvp {

void check_mode(std::string_view mode) {
    if (mode == "ram") return;
    if (mode != "swap") throw InvalidParametersException("", "Invalid Mode: " + std::string(mode));
    throw InvalidParametersException("", unbuilt_text(swap_mode_name));
}

NormalFloatSession::NormalFloatSession(std::shared_ptr<ConstantSettings> settings_) : settings(std::move(settings_)) {
    std::random_device device;
    seed = std::uint64_t{device()} << 32 | device();
}

void NormalFloatSession::refresh() {
    Constant& constant = *settings->constant;
    working_size = settings->size.working_size();
    constant.set_digits(working_size.decimal_digits);
    name_short = constant.short_name();
    name_long = constant.long_name();
    display_color = constant.color();
}

void NormalFloatSession::set(const NormalFloatSession& other) {
    if (other.seed != seed) throw InvalidParametersException("", "Cannot set to different seed.");
    settings = other.settings;
    update();
}

void NormalFloatSession::check_built() const {
    if (obstacle && !obstacle->unbuilt.empty()) stop_unbuilt(obstacle->unbuilt);
}

void NormalFloatSession::check() const {
    check_built();
    if (!obstacle) return;
    if (obstacle->cause) obstacle->cause->fire();
    throw InvalidParametersException("", obstacle->reason);
}

} // namespace zvp
