#include "app/failure/exceptions.h"
#include "functions/invsqrt_storage.h"
#include "functions/invsqrt_word.h"
#include "functions/residual.h"

#include <cmath>

namespace zvp {

IterationSizes InvsqrtWord_BigFloatR_E::sizes(std::size_t p, std::uint32_t tds) { return invsqrt_small_sizes(p, tds); }

InvsqrtWord_BigFloatR_E::InvsqrtWord_BigFloatR_E(std::size_t p_, std::uint32_t tds_)
    : IterationLimits{p_, tds_}, IterationSizes(sizes(p_, tds_)) {}

void InvsqrtWord_BigFloatR_E::run(const MultiplyParameters& pars, BigFloat& T, wtype x, std::size_t run_p,
                                  LinearWordBuffer buffer) const {
    check(function, run_p, pars.tds);
    const IterationSizes needed = sizes(run_p, pars.tds);
    check_size(function, T.capacity, needed.result_words);
    check_size(function, buffer.words, needed.buffer_words);
    check_size(function, pars.ML, needed.memory_bytes);
    iterate(pars, T, x, run_p, buffer);
}

void InvsqrtWord_BigFloatR_E::iterate(const MultiplyParameters& pars, BigFloat& T, wtype x, std::size_t p,
                                      LinearWordBuffer buffer) {
    if (x == 0) throw ArithmeticException(function, "Divide by zero.");
    if (p == 0) return T.set_double(1.0 / std::sqrt(static_cast<double>(x)), 0);
    const std::size_t q = previous_precision(p);
    iterate(pars, T, x, q, buffer);
    BigFloat R = carve(buffer, q + 3);
    BigFloat F = carve(buffer, q + 2);
    F.set_BigFloat(q, pars, T);
    T.set_sqr(p, pars, F);
    T.mul_uW(pars, x);
    const Estimate side = ResidualCheck{function, q}.take_whole(T, pars);
    if (T.L == 0) return T.set_BigFloat(p, pars, F);
    halve(T, pars);
    R.set_mul(q, pars, T, F);
    correct(T, side, p, pars, F, R);
}

} // namespace zvp
