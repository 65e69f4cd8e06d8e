#include "app/console/unbuilt.h"

#include "app/console/build_info.h"
#include "app/console/console.h"

#include <string>

namespace zvp {

std::string unbuilt_text(std::string_view what) {
    return std::string(what) + (what.empty() ? "" : " ") + "isn't part of version " + version_text() + ".";
}

void print_unbuilt(std::string_view what) {
    print_line(unbuilt_text(what), 'R');
    set_color('w');
}

void stop_unbuilt(std::string_view what) {
    print_unbuilt(what);
    fatal_stop();
}

} // namespace zvp
