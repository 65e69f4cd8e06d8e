// The limb loops of the avx2 set: mulx leaves the carry flag alone, so that the high limbs are added in one chain.

#include "multiply/words/carry_chain.h"
#include "multiply/words/limb_kernels.h"
#include "multiply/words/mulx_chain.h"

namespace zvp::avx2 {

constexpr LimbKernels limb_kernel_table{platform::KernelSet::avx2, add_chain, subtract_chain, mulx_chain,
                                        mulx_add_chain};

} // namespace zvp::avx2
