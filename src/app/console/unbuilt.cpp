#include "app/console/unbuilt.h"

#include "app/console/build_info.h"
#include "app/console/console.h"

#include <string>

namespace zvp {

void stop_unbuilt(std::string_view what) {
    print_line(std::string(what) + " isn't part of version " + version_text() + ".", 'R');
    fatal_stop();
}

} // namespace zvp
