#include "app/console/recovered_errors.h"

#include "app/console/console.h"
#include "app/console/console_lock.h"

#include <atomic>
#include <mutex>

namespace zvp {

namespace {

std::atomic<std::uint64_t> count{0};

} // namespace

void report_recovered_error(std::string_view text) {
    ++count;
    const std::lock_guard lock(console_mutex());
    print_line("");
    print_line("Recovered Error: " + std::string(text), 'R');
    reset_color();
}

std::uint64_t recovered_errors() { return count; }

} // namespace zvp
