#include "app/console/unbuilt.h"

#include "app/console/build_info.h"
#include "app/console/console.h"

#include <string>

namespace zvp {

void print_unbuilt(std::string_view what) {
    print_line(std::string(what) + " isn't part of version " + version_text() + ".", 'R');
    set_color('w');
}

void stop_unbuilt(std::string_view what) {
    print_unbuilt(what);
    fatal_stop();
}

} // namespace zvp
