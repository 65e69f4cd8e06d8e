#include "functions/invsqrt_float.h"

#include "functions/invsqrt_storage.h"
#include "functions/iteration_status.h"
#include "functions/iteration_task.h"
#include "functions/residual.h"
#include "numbers/transforms/big_float_transform.h"
#include "numbers/transforms/transform_helper.h"

namespace zvp {

namespace {

constexpr const char* function = "InvsqrtFloat_BigFloatR::run()";

} // namespace

IterationSizes InvsqrtFloat_BigFloatR::sizes(std::size_t p, std::uint32_t tds) {
    return invsqrt_sizes(p, tds, transform_words(p));
}

InvsqrtFloat_BigFloatR::InvsqrtFloat_BigFloatR(std::size_t p_, std::uint32_t tds_)
    : IterationLimits{p_, tds_}, IterationSizes(sizes(p_, tds_)), small(std::min(p_, transform_precision), tds_) {}

void InvsqrtFloat_BigFloatR::run(const MultiplyParameters& pars, StatusNode* status, BigFloat& T, const BigFloat& A,
                                 std::size_t run_p, LinearWordBuffer buffer) const {
    check(run_p < transform_precision ? small.function : function, run_p, pars.tds);
    const IterationSizes needed = sizes(run_p, pars.tds);
    LinearWordBuffer(buffer).cut_from_bottom(needed.buffer_words);
    if (run_p < transform_precision) {
        check_size(function, pars.ML, needed.memory_bytes);
        return small.run(pars, T, A, run_p, buffer);
    }
    check_size(function, T.capacity, run_p + 4);
    TransformHelper(pars, transform_words(run_p), 2);
    check_size(function, pars.ML, needed.memory_bytes);
    iterate(pars, status, T, A, run_p, buffer);
}

void InvsqrtFloat_BigFloatR::run_task(const MultiplyParameters& pars, StatusSink* sink, BigFloat& T, const BigFloat& A,
                                      std::size_t run_p, LinearWordBuffer buffer) const {
    run_as_task(sink, "Large Invsqrt...", [&](StatusNode* status) { run(pars, status, T, A, run_p, buffer); });
}

// A lower level has T and the buffer to itself; only then is its result moved away.
void InvsqrtFloat_BigFloatR::iterate(const MultiplyParameters& pars, StatusNode* status, BigFloat& T, const BigFloat& A,
                                     std::size_t p, LinearWordBuffer buffer) {
    if (p < transform_precision) return InvsqrtFloat_BigFloatR_E::iterate(pars, T, A, p, buffer);
    const std::size_t q = previous_precision(p);
    IterationStatus progress(status);
    progress.descend([&](StatusNode* inner) { iterate(pars, inner, T, A, q, buffer); });
    BigFloat F = carve(buffer, invsqrt_estimate_words(q));
    BigFloat R = carve(buffer, invsqrt_correction_words(q));
    F.set_BigFloat(q, pars, T);
    const KeptNumber kept_F(F, pars);

    const auto eps = 2 - static_cast<std::int64_t>(q);
    const TransformHelper helper(pars, transform_words(p), 2);
    MultiplyParameters silent = pars;
    silent.status = nullptr;
    progress.show(" 0S ", q);
    T.set_sqr(p, silent, F);
    progress.show(" 1M ", q);
    BigFloatTransformR::mul_rr_xx(helper.pars(), helper.transform(), helper.M(), T, -static_cast<std::int64_t>(p), eps,
                                  helper.form(0), T, p, helper.form(1), A, p);

    const Estimate side = ResidualCheck{function, q}.take_window(T, eps, pars);
    if (T.L == 0) return T.set_BigFloat(p, pars, F); // right as far as the window sees
    halve(T, pars);
    const KeptNumber kept_T(T, pars);
    progress.show(side == Estimate::under ? " U2M " : " O2M ", q);
    R.set_mul(q, silent, T, F);
    kept_T.check(function);
    correct(T, side, p, pars, F, R);
    kept_F.check(function);
}

} // namespace zvp
