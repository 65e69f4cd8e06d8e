#include "app/failure/assertion.h"

#include "app/console/console.h"

#include <string>

namespace zvp {

void assertion_failed(const char* file, int line, const char* condition) {
    set_color('R');
    print("\n\nFATAL ERROR: Assertion Failure\n\n");
    print_line(file);
    print("Line: " + std::to_string(line) + "\n\n");
    print(condition);
    print("\n\n\n");
    print_line("If this error shows up consistantly with the current options,\nplease report it as a bug.\n\n"
               "If this error comes and goes with the current options,\nplease check your hardware for reliability "
               "issues.\nAre you overclocking?\n\nTerminating Program...");
    set_color('w');
    pause();
    __builtin_trap();
}

} // namespace zvp
