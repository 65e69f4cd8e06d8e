#include "multiply/basecase/product_kernels.h"

#include "multiply/basecase/product_kernel_tables.h"
#include "platform/processor_features.h"

namespace zvp::MULB {

const ProductKernels& product_kernels(platform::KernelSet set) {
    const bool adx = platform::processor_features().bmi2 && platform::processor_features().adx;
    return set != platform::KernelSet::sse3 && adx ? adx_product_kernels() : plain_product_kernels();
}

} // namespace zvp::MULB
