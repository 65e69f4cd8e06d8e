#include "parallel/memory/memory_allocator.h"

#include "app/console/console.h"
#include "app/console/number_forms.h"

#include <algorithm>
#include <string>

namespace zvp {

namespace {

[[noreturn]] void stop_without_memory(std::size_t bytes) {
    print_line();
    print_line("Large heap allocation failed.", 'R');
    print_line();
    print_labelm_line(20, "Failed Allocation", format_number(bytes, NumberForm::commas_and_bytes));
    print_line();
    fatal_stop();
}

} // namespace

std::unique_ptr<Allocation> MemoryAllocator::allocate_or_stop(std::vector<StatusCell>& log,
                                                              const ParallelContext& context, unsigned alignment_bits,
                                                              std::size_t bytes) const {
    if (bytes == 0) {
        log.push_back({'G', "0"});
        return std::make_unique<Allocation>();
    }
    std::unique_ptr<Allocation> allocation = allocate(context, alignment_bits, bytes);
    if (!allocation->pointer) stop_without_memory(bytes);
    log.push_back({'G', allocation->record ? allocation->record->one_line() : format_bytes(allocation->bytes)});
    return allocation;
}

bool acquire_lock_privilege(platform::MemorySystem& system) {
    const platform::LockPrivilege& privilege = system.lock_privilege();
    if (privilege.granted) return true;
    if (privilege.lookup_error != 0) print_line("getrlimit() error " + std::to_string(privilege.lookup_error));
    if (privilege.adjust_error != 0) print_line("setrlimit() error " + std::to_string(privilege.adjust_error));
    return false;
}

std::size_t round_up(std::size_t bytes, std::size_t unit) {
    std::size_t sum;
    return __builtin_add_overflow(bytes, unit - 1, &sum) ? 0 : sum & ~(unit - 1);
}

std::size_t mapping_alignment(unsigned alignment_bits, std::size_t unit) {
    constexpr unsigned address_bits = 47;
    return alignment_bits > address_bits ? 0 : std::max(std::size_t{1} << alignment_bits, unit);
}

} // namespace zvp
