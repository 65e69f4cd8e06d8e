#include "app/menus/about_screen.h"

#include "app/console/build_info.h"
#include "app/console/console.h"

namespace zorvane {

void about_screen() {
    using zvp::print_line;
    print_line("zorvane  -  Digits that you can trust", 'G');
    print_line("Version: " + zvp::version_text(), 'w');
    print_line("Made by the zorvane developers", 't');
    print_line();
    print_line("zorvane is a number-crunching tool, a processor benchmark and a stress test in\n"
               "one. It is being built to compute mathematical constants to as many digits as\n"
               "a machine holds, in memory or on its disks. All of its mathematics is its own.\n"
               "\n"
               "This version computes Pi, e, square roots and the golden ratio in memory, writes\n"
               "their decimal and hexadecimal digits and proves them; and it extracts hexadecimal\n"
               "digits of Pi at any position, without the digits before them. It uses all cores.",
               'w');
    print_line();
    print_line("Disclaimer:", 'Y');
    print_line();
    print_line("Performing large multi-threaded computations using this program may\n"
               "subject your computer to extremely high levels of stress for extended\n"
               "periods of time. To protect your computer, MAKE SURE that your hardware\n"
               "is stable and fit before performing large computations. I will take\n"
               "absolutely no responsibility for any damage that may be caused by this\n"
               "program.",
               'T');
    zvp::set_color('w');
}

} // namespace zorvane
