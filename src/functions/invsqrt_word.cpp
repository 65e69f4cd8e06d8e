#include "functions/invsqrt_word.h"

#include "functions/invsqrt_storage.h"
#include "functions/iteration_status.h"
#include "functions/iteration_task.h"
#include "functions/kept_product.h"
#include "functions/residual.h"

#include <string>

namespace zvp {

namespace {

constexpr const char* function = "InvsqrtWord_BigFloatR::run()";

/// A square of a (q+2)-word estimate; p + 6 words hold it whole, so that here nothing wraps around.
constexpr std::size_t transform_words(std::size_t p) { return p + 6; }

} // namespace

IterationSizes InvsqrtWord_BigFloatR::sizes(std::size_t p, std::uint32_t tds) { return invsqrt_sizes(p, tds, p + 8); }

InvsqrtWord_BigFloatR::InvsqrtWord_BigFloatR(std::size_t p_, std::uint32_t tds_)
    : IterationLimits{p_, tds_}, IterationSizes(sizes(p_, tds_)), small(std::min(p_, transform_precision), tds_) {}

void InvsqrtWord_BigFloatR::run(const MultiplyParameters& pars, StatusNode* status, BigFloat& T, wtype x,
                                std::size_t run_p, LinearWordBuffer buffer) const {
    check(run_p < transform_precision ? small.function : function, run_p, pars.tds);
    const IterationSizes needed = sizes(run_p, pars.tds);
    LinearWordBuffer(buffer).cut_from_bottom(needed.buffer_words);
    if (run_p < transform_precision) {
        check_size(function, pars.ML, needed.memory_bytes);
        return small.run(pars, T, x, run_p, buffer);
    }
    check_size(function, T.capacity, run_p + 4);
    TransformHelper(pars, transform_words(run_p), 2);
    check_size(function, pars.ML, needed.memory_bytes);
    iterate(pars, status, T, x, run_p, buffer, true);
}

void InvsqrtWord_BigFloatR::run_task(const MultiplyParameters& pars, StatusSink* sink, BigFloat& T, wtype x,
                                     std::size_t run_p, LinearWordBuffer buffer) const {
    run_as_task(sink, "InvSqrt(" + std::to_string(x) + ")...",
                [&](StatusNode* status) { run(pars, status, T, x, run_p, buffer); });
}

// A lower level has T and the buffer to itself; only then is its result moved away.
void InvsqrtWord_BigFloatR::iterate(const MultiplyParameters& pars, StatusNode* status, BigFloat& T, wtype x,
                                    std::size_t p, LinearWordBuffer buffer, bool is_last) {
    if (p < transform_precision) return InvsqrtWord_BigFloatR_E::iterate(pars, T, x, p, buffer);
    const std::size_t q = previous_precision(p);
    IterationStatus progress(status);
    progress.descend([&](StatusNode* inner) { iterate(pars, inner, T, x, q, buffer, false); });
    BigFloat F = carve(buffer, invsqrt_estimate_words(q));
    BigFloat R = carve(buffer, invsqrt_correction_words(q));
    F.set_BigFloat(q, pars, T);

    const std::int64_t eps = std::min<std::int64_t>(F.exp + 2, 0);
    const TransformHelper helper(pars, transform_words(p), 2);
    const StepWatch watch(function, helper, is_last || p >= StepWatch::least_words);
    const WatchedFactor f = watch.factor(F, p + 2);
    BigFloatTransformR Ft;
    progress.show(" 0S ", q);
    BigFloatTransformR::sqr_rx_xf(helper.pars(), helper.transform(), helper.M(), T, 2 * F.exp, eps, helper.form(0), F,
                                  p, helper.form(1), Ft);
    WatchedProduct product = watch.product(T, f, f, 2 * F.exp, eps);
    T.mul_uW(pars, x);
    const std::uint64_t above = watch.residue(T, eps);
    product.above = add_mod(mul_mod(product.above, x), shift_words(above, -eps));

    const std::uint64_t t = subtract_mod(mul_mod(product.window, x), above);
    const Estimate side = ResidualCheck{function, q}.take_window(T, eps, pars);
    watch.check_near_one(product, eps, side);
    const std::uint64_t d = StepWatch::residual(t, side, eps);
    if (T.L == 0) { // right as far as the window sees
        watch.check(T, d);
        T.set_BigFloat(p, pars, F);
        return watch.check(T, f.residue);
    }
    watch.carry(T, d);
    halve(T, pars);
    progress.show(side == Estimate::under ? " U1M " : " O1M ", q);
    const std::uint64_t r = multiply_kept(helper, 0, R, T, q, Ft, watch, half_residue(d), f);
    const bool nudged = correct(T, side, p, pars, F, R);
    watch.check_sum(T, side == Estimate::over, F, f.residue, R, r, nudged);
}

} // namespace zvp
