#include "app/failure/exceptions.h"
#include "functions/invsqrt_float.h"
#include "functions/invsqrt_storage.h"
#include "functions/residual.h"

#include <array>
#include <cmath>

namespace zvp {

IterationSizes InvsqrtFloat_BigFloatR_E::sizes(std::size_t p, std::uint32_t tds) { return invsqrt_small_sizes(p, tds); }

InvsqrtFloat_BigFloatR_E::InvsqrtFloat_BigFloatR_E(std::size_t p_, std::uint32_t tds_)
    : IterationLimits{p_, tds_}, IterationSizes(sizes(p_, tds_)) {}

void InvsqrtFloat_BigFloatR_E::run(const MultiplyParameters& pars, BigFloat& T, const BigFloat& A, std::size_t run_p,
                                   LinearWordBuffer buffer) const {
    check(function, run_p, pars.tds);
    const IterationSizes needed = sizes(run_p, pars.tds);
    check_size(function, T.capacity, needed.result_words);
    check_size(function, buffer.words, needed.buffer_words);
    check_size(function, pars.ML, needed.memory_bytes);
    iterate(pars, T, A, run_p, buffer);
}

void InvsqrtFloat_BigFloatR_E::iterate(const MultiplyParameters& pars, BigFloat& T, const BigFloat& A, std::size_t p,
                                       LinearWordBuffer buffer) {
    if (p == 0) return start(T, A);
    const std::size_t q = previous_precision(p);
    iterate(pars, T, A, q, buffer);
    BigFloat R = carve(buffer, q + 3);
    BigFloat F = carve(buffer, q + 2);
    F.set_BigFloat(q, pars, T);
    std::array<wtype, transform_precision + BigFloat::extra_precision> square_words;
    BigFloat square(is_dry(T.buffer) ? T.buffer : square_words.data(), square_words.size());
    square.set_sqr(p, pars, F);
    T.set_mul(p, pars, square, A);
    const Estimate side = ResidualCheck{function, q}.take_whole(T, pars);
    if (T.L == 0) return T.set_BigFloat(p, pars, F);
    halve(T, pars);
    R.set_mul(q, pars, T, F);
    correct(T, side, p, pars, F, R);
}

void InvsqrtFloat_BigFloatR_E::start(BigFloat& T, const BigFloat& A) {
    if (A.L == 0 || !A.sign) throw ArithmeticException(function, "Square root of negative number.");
    A.check_normalization();
    std::int64_t e;
    double x = 1.0 / std::sqrt(A.to_double(e));
    std::int64_t u = -e;
    if (u % 2 != 0) {
        x *= 65536.0; // the square root of the word base
        u -= 1;
    }
    T.set_double(x, u / 2);
}

} // namespace zvp
