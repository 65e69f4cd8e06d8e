#include "app/console/cpu_usage.h"

#include "app/console/console.h"
#include "app/console/number_forms.h"

#include <string>

namespace zvp {

void print_cpu_usage(double wall_seconds, double user_seconds, double kernel_seconds, std::uint32_t logical_cores) {
    const auto print_usage = [&](std::string_view label, double wall) {
        print(label);
        if (wall <= 0) {
            print_line("Too Fast to Measure", 'Y');
        } else {
            print(format_fixed(user_seconds * 100 / wall, 2) + " %", 'Y');
            if (kernel_seconds >= 0)
                print("  +  " + format_fixed(kernel_seconds * 100 / wall, 2) + " % kernel overhead", 'Y');
            print_line();
        }
        set_color('w');
    };
    print_usage("CPU Utilization:        ", wall_seconds);
    print_usage("Multi-core Efficiency:  ", wall_seconds * logical_cores);
}

} // namespace zvp
