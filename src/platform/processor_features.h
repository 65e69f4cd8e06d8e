#pragma once
// Processor and operating system features that the start-up check and the choice of kernels ask for.

#include <string>

namespace zvp::platform {

/// Flags from the cpuid instruction; a leaf that the processor doesn't have leaves its flags false.
struct ProcessorFeatures {
    // Registers that the operating system saves, from xgetbv(0).
    bool os_avx = false;
    bool os_avx512 = false;

    bool sse = false;
    bool sse2 = false;
    bool sse3 = false;
    bool bmi2 = false;
    bool adx = false;
    bool avx2 = false;
    bool fma3 = false;
    bool avx512_f = false;
    bool avx512_vl = false;
    bool avx512_bw = false;
    bool avx512_dq = false;
};

ProcessorFeatures read_processor_features();

/// The features of this machine, read once.
const ProcessorFeatures& processor_features();

/// The processor's brand string; "Unable to Detect" where it has none.
std::string processor_name();

} // namespace zvp::platform
