#pragma once

#include "multiply/basecase/product_kernels.h"

namespace zvp::MULB {

/// For any x86-64 processor.
const ProductKernels& plain_product_kernels();

/// For processors with BMI2 and ADX only.
const ProductKernels& adx_product_kernels();

} // namespace zvp::MULB
