#include "bbp/bbp_kernels.h"

#include "bbp/kernels/kernel_tables.h"

namespace BBPv2 {

const BBPKernels& bbp_kernels(zvp::platform::KernelSet set) {
    switch (set) {
    case zvp::platform::KernelSet::sse3: break;
    case zvp::platform::KernelSet::avx2: return zvp::avx2::bbp_kernel_table();
    case zvp::platform::KernelSet::avx512: return zvp::avx512::bbp_kernel_table();
    }
    return zvp::sse3::bbp_kernel_table();
}

} // namespace BBPv2
