#include "multiply/hybrid/ring_kernels.h"

#include "multiply/hybrid/kernels/kernel_tables.h"

namespace zvp {

const RingKernels& ring_kernels(platform::KernelSet set) {
    return set == platform::KernelSet::avx512 ? avx512::ring_kernel_table() : plain::ring_kernel_table();
}

} // namespace zvp
