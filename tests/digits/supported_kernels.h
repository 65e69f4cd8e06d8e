#pragma once

#include "digits/hash/digit_kernels.h"

#include <string>
#include <vector>

namespace test {

inline std::vector<zvp::platform::KernelSet> supported_kernel_sets() {
    std::vector<zvp::platform::KernelSet> sets;
    for (const zvp::platform::KernelSet set : zvp::platform::all_kernel_sets)
        if (zvp::platform::kernel_set_supported(set)) sets.push_back(set);
    return sets;
}

inline std::string name_of(zvp::platform::KernelSet set) { return std::string(zvp::platform::kernel_set_name(set)); }

} // namespace test
