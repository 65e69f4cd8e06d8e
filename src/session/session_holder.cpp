#include "session/session_holder.h"

#include "app/console/unbuilt.h"

namespace zvp {

NormalFloatSessionHolder::NormalFloatSessionHolder()
    : in_memory(std::make_unique<NormalFloatSessionB>(settings, framework, allocator)), seed(in_memory->seed) {}

NormalFloatSessionHolder::NormalFloatSessionHolder(const Object& object) : NormalFloatSessionHolder() {
    set_mode(object.get_string("Mode"));
    in_memory->load(object);
}

void NormalFloatSessionHolder::set_mode(std::string_view mode) {
    if (mode == "swap") stop_unbuilt(swap_mode_name);
    check_mode(mode);
}

void NormalFloatSessionHolder::menu(bool offer_start) {
    for (;;) {
        try {
            active().menu(offer_start);
            break;
        } catch (const ModeChangeException&) {
            // The other session's menu goes on with the settings that both have.
        }
    }
    if (offer_start) active().run();
}

} // namespace zvp
