#include "app/failure/exceptions.h"
#include "functions/reciprocal.h"
#include "functions/residual.h"

namespace zvp {

IterationSizes Reciprocal_BigFloatR_E::sizes(std::size_t p, std::uint32_t tds) {
    return {p + 3, (p + 21) & ~std::size_t{15}, product_memory(p + 8, tds)};
}

Reciprocal_BigFloatR_E::Reciprocal_BigFloatR_E(std::size_t p_, std::uint32_t tds_)
    : IterationLimits{p_, tds_}, IterationSizes(sizes(p_, tds_)) {}

void Reciprocal_BigFloatR_E::run(const MultiplyParameters& pars, BigFloat& T, const BigFloat& A, std::size_t run_p,
                                 LinearWordBuffer buffer) const {
    check(function, run_p, pars.tds);
    const IterationSizes needed = sizes(run_p, pars.tds);
    check_size(function, T.capacity, needed.result_words);
    check_size(function, buffer.words, needed.buffer_words);
    check_size(function, pars.ML, needed.memory_bytes);
    iterate(pars, T, A, run_p, buffer);
}

void Reciprocal_BigFloatR_E::iterate(const MultiplyParameters& pars, BigFloat& T, const BigFloat& A, std::size_t p,
                                     LinearWordBuffer buffer) {
    if (p == 0) return start(T, A);
    const std::size_t q = previous_precision(p);
    iterate(pars, T, A, q, buffer);
    BigFloat F = carve(buffer, q + 2);
    BigFloat R = carve(buffer, q + 3);
    F.set_BigFloat(q, pars, T);
    T.set_mul(p, pars, A, F);
    const Estimate side = ResidualCheck{function, q}.take_whole(T, pars);
    if (T.L == 0) return T.set_BigFloat(p, pars, F);
    R.set_mul(q, pars, T, F);
    correct(T, side, p, pars, F, R);
}

void Reciprocal_BigFloatR_E::start(BigFloat& T, const BigFloat& A) {
    if (A.L == 0) throw ArithmeticException(function, "Divide by zero.");
    A.check_normalization();
    std::int64_t e;
    const double d = A.to_double(e);
    T.set_double(static_cast<double>(1.0L / d), -e);
}

} // namespace zvp
