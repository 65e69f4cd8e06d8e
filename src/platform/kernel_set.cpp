#include "platform/kernel_set.h"

#include "platform/process.h"
#include "platform/processor_features.h"

namespace zvp::platform {

namespace {

struct KernelSetRow {
    std::string_view name;
    std::string_view processors;
};

constexpr std::array<KernelSetRow, 3> rows{{
    {"sse3", "any x86-64 processor with SSE3"},
    {"avx2", "Intel Haswell, AMD Zen and later (AVX2, FMA)"},
    {"avx512", "Intel Skylake-X, AMD Zen 4 and later (AVX-512)"},
}};

} // namespace

std::string_view kernel_set_name(KernelSet set) { return rows[static_cast<unsigned>(set)].name; }

std::string_view kernel_set_processors(KernelSet set) { return rows[static_cast<unsigned>(set)].processors; }

bool kernel_set_supported(KernelSet set) {
    const ProcessorFeatures& f = processor_features();
    const bool avx2 = f.os_avx && f.avx2 && f.fma3 && f.bmi2;
    switch (set) {
    case KernelSet::sse3: return f.sse3;
    case KernelSet::avx2: return avx2;
    case KernelSet::avx512:
        return avx2 && f.os_avx512 && f.adx && f.avx512_f && f.avx512_vl && f.avx512_bw && f.avx512_dq;
    }
    return false;
}

KernelSetChoice choose_kernel_set(std::string_view forced) {
    KernelSetChoice choice{KernelSet::sse3, ""};
    std::string names;
    for (const KernelSet set : all_kernel_sets) {
        if (!kernel_set_supported(set)) continue;
        choice.set = set;
        names += (names.empty() ? "" : ", ") + std::string(kernel_set_name(set));
    }
    if (forced.empty()) return choice;
    for (const KernelSet set : all_kernel_sets)
        if (kernel_set_name(set) == forced && kernel_set_supported(set)) return {set, ""};
    choice.error =
        "ZORVANE_KERNELS names the kernel set \"" + std::string(forced) + "\". This machine runs: " + names + ".";
    return choice;
}

const KernelSetChoice& kernel_set_choice() {
    static const KernelSetChoice choice = choose_kernel_set(environment_variable("ZORVANE_KERNELS"));
    return choice;
}

} // namespace zvp::platform
