#pragma once

#include "multiply/basecase/product_kernels.h"

namespace zvp::MULB {

const ProductKernels& plain_product_kernels();
const ProductKernels& adx_product_kernels();

} // namespace zvp::MULB
