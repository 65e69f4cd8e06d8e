#include "multiply/tables/algorithm_registry.h"

#include "multiply/algorithms/bkt_algorithm.h"
#include "multiply/algorithms/fft_algorithm.h"
#include "multiply/algorithms/hnt_algorithm.h"

namespace zvp {

namespace {

std::pair<std::string, AlgorithmKinds> row(const MultiplyAlgorithm<c32i>& basic_c32i,
                                           const MultiplyAlgorithm<c64i>& basic_c64i) {
    return {basic_c32i.id, {&basic_c32i, &basic_c64i}};
}

} // namespace

const Registry<AlgorithmKinds>& algorithm_registry() {
    static const Registry<AlgorithmKinds> registry("Duplicate Multiply Algorithm",
                                                   {row(bkt_algorithm<c32i>(), bkt_algorithm<c64i>()),
                                                    row(fft_algorithm<c32i>(), fft_algorithm<c64i>()),
                                                    row(hnt_algorithm<c32i>(), hnt_algorithm<c64i>())});
    return registry;
}

} // namespace zvp
