#include "app/console/build_info.h"

#include "app/console/number_forms.h"
#include "platform/kernel_set.h"

#include <limits>

namespace zvp {

std::string version_text() { return ZORVANE_VERSION " Build " ZORVANE_BUILD_NUMBER; }

constexpr std::uint64_t chosen_cap = ZORVANE_MEMORY_CAP;
const std::uint64_t memory_cap = chosen_cap == 0 ? std::numeric_limits<std::size_t>::max() : chosen_cap;

std::vector<std::pair<std::string, std::string>> compilation_options() {
    std::string kernel_sets;
    for (const platform::KernelSet set : platform::all_kernel_sets)
        kernel_sets += (kernel_sets.empty() ? "" : ", ") + std::string(platform::kernel_set_name(set));
    return {
#if defined(__clang__)
        {"Compiler", "clang " __clang_version__},
#else
        {"Compiler", "g++ " __VERSION__},
#endif
            {"Build Type", ZORVANE_BUILD_TYPE}, {"Sanitizers", ZORVANE_SANITIZERS[0] ? ZORVANE_SANITIZERS : "none"},
            {"Address Size", std::to_string(8 * sizeof(void*)) + " bits"}, {"Baseline", "x86-64, SSE3"},
            {"Kernel Sets", kernel_sets},
            {"Memory Setting Cap", chosen_cap == 0 ? "none" : format_number(memory_cap, NumberForm::commas_and_bytes)},
    };
}

} // namespace zvp
