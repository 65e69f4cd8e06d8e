#include "app/console/process_switches.h"

namespace zvp {

ProcessSwitches& process_switches() {
    static ProcessSwitches switches;
    return switches;
}

} // namespace zvp
