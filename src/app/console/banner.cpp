#include "app/console/banner.h"

#include "app/console/build_info.h"
#include "app/console/console.h"
#include "app/console/watching.h"
#include "platform/kernel_set.h"

#include <string>

namespace zvp {

void print_banner() {
    print_line("zorvane v" + version_text(), 'g');
    print_line("The manual is README.md, with docs/ beside it.");
    print_line("Made by the zorvane developers", 't');
    print_line("      Contact: the issue tracker of the project that you have this program from");
    print_line();
    print_line("Distribute Freely - Please report any bugs.", 'w');
    print_line();
    print_tuning();
}

void print_tuning() {
    const platform::KernelSet set = platform::active_kernel_set();
    set_color('w');
    print_labelc(
        "Tuning",
        " Linux/" + std::string(platform::kernel_set_name(set)) + (arithmetic_is_watched ? "" : " (unwatched)"), 'G');
    print("  -  ", 'w');
    print_line(platform::kernel_set_processors(set));
}

} // namespace zvp
