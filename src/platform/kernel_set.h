#pragma once
// Which set of processor kernels runs.
//
// A hot kernel is written once, in an .inl file, against the vector types of platform/simd/. One source per set
// opens a target region, includes the .inl in the set's namespace and fills a table of function pointers; the
// caller takes its table by active_kernel_set() once per large block.

#include <array>
#include <string>
#include <string_view>

namespace zvp::platform {

enum class KernelSet : unsigned { sse3, avx2, avx512 };

/// From the most widely supported to the fastest.
inline constexpr std::array all_kernel_sets{KernelSet::sse3, KernelSet::avx2, KernelSet::avx512};

std::string_view kernel_set_name(KernelSet set);

/// The processors that the set is written for, as the banner tells it.
std::string_view kernel_set_processors(KernelSet set);

/// Whether both the processor and the operating system can run the set.
bool kernel_set_supported(KernelSet set);

struct KernelSetChoice {
    KernelSet set;
    std::string error; // empty when the choice is good
};

/// The last supported set, unless `forced` names another. A name that is unknown, or a set that this machine
/// can't run, is told in `error`.
KernelSetChoice choose_kernel_set(std::string_view forced);

/// The choice of this process, made once from the environment variable ZORVANE_KERNELS.
const KernelSetChoice& kernel_set_choice();

inline KernelSet active_kernel_set() { return kernel_set_choice().set; }

} // namespace zvp::platform
