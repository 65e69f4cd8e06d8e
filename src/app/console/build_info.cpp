#include "app/console/build_info.h"

#include "app/console/number_forms.h"
#include "platform/kernel_set.h"

namespace zvp {

std::string version_text() { return ZORVANE_VERSION " Build " ZORVANE_BUILD_NUMBER; }

std::uint64_t memory_setting_cap() { return ZORVANE_MEMORY_CAP; }

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
            {"Memory Setting Cap", format_number(memory_setting_cap(), NumberForm::commas_and_bytes)},
    };
}

} // namespace zvp
