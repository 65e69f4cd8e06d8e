#include "multiply/hybrid/ring_kernels.h"

#include "multiply/hybrid/kernels/kernel_tables.h"

namespace zvp {

const RingKernels& ring_kernels(platform::KernelSet set) {
    switch (set) {
    case platform::KernelSet::avx512: return avx512::ring_kernel_table();
    case platform::KernelSet::avx2: return avx2::ring_kernel_table();
    case platform::KernelSet::sse3: break;
    }
    return sse3::ring_kernel_table();
}

} // namespace zvp
