#include "functions/invsqrt_float.h"

#include "functions/invsqrt_storage.h"
#include "functions/iteration_status.h"
#include "functions/iteration_task.h"
#include "functions/kept_product.h"
#include "functions/residual.h"

namespace zvp {

namespace {

constexpr const char* function = "InvsqrtFloat_BigFloatR::run()";

/// R = T * F at precision q. d and f are the residues that T and F must have. Returns R's.
std::uint64_t multiply_last(const MultiplyParameters& pars, BigFloat& R, const BigFloat& T, std::uint64_t d,
                            const BigFloat& F, std::uint64_t f, std::size_t q, bool watched) {
    const std::size_t cut = q + BigFloat::extra_precision;
    const TransformHelper helper(pars, std::min(T.L, cut) + F.L, 2);
    BigFloatTransformR Ft;
    Ft.forward(helper.pars(), helper.transform(), helper.M(), F, q, helper.form(1));
    const StepWatch watch(function, helper, watched);
    return multiply_kept(helper, 0, R, T, q, Ft, watch, d, watch.factor(F, cut, f));
}

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
    iterate(pars, status, T, A, run_p, buffer, true);
    A.check_hash(function, pars);
}

void InvsqrtFloat_BigFloatR::run_task(const MultiplyParameters& pars, StatusSink* sink, BigFloat& T, const BigFloat& A,
                                      std::size_t run_p, LinearWordBuffer buffer) const {
    run_as_task(sink, "Large Invsqrt...", [&](StatusNode* status) { run(pars, status, T, A, run_p, buffer); });
}

// A lower level has T and the buffer to itself; only then is its result moved away.
void InvsqrtFloat_BigFloatR::iterate(const MultiplyParameters& pars, StatusNode* status, BigFloat& T, const BigFloat& A,
                                     std::size_t p, LinearWordBuffer buffer, bool is_last) {
    if (p < transform_precision) return InvsqrtFloat_BigFloatR_E::iterate(pars, T, A, p, buffer);
    const std::size_t q = previous_precision(p);
    IterationStatus progress(status);
    progress.descend([&](StatusNode* inner) { iterate(pars, inner, T, A, q, buffer, false); });
    BigFloat F = carve(buffer, invsqrt_estimate_words(q));
    BigFloat R = carve(buffer, invsqrt_correction_words(q));
    F.set_BigFloat(q, pars, T);

    const auto words = static_cast<std::int64_t>(p), eps = 2 - static_cast<std::int64_t>(q);
    const TransformHelper helper(pars, transform_words(p), 2);
    MultiplyParameters silent = pars;
    silent.status = nullptr;
    const StepWatch watch(function, helper, is_last || p >= StepWatch::least_words);
    const std::uint64_t f = watch.residue(F);
    progress.show(" 0S ", q);
    T.set_sqr(p, silent, F);
    const WatchedFactor s = watch.factor(T, p + 2, watch.square(T, F, f)), a = watch.seen_factor(A, p + 2);
    progress.show(" 1M ", q);
    BigFloatTransformR::mul_rr_xx(helper.pars(), helper.transform(), helper.M(), T, -words, eps, helper.form(0), T, p,
                                  helper.form(1), A, p);
    const WatchedProduct product = watch.product(T, s, a, -words, eps);

    const std::uint64_t t = subtract_mod(product.window, watch.residue(T, eps));
    const Estimate side = ResidualCheck{function, q}.take_window(T, eps, pars);
    watch.check_near_one(product, eps, side);
    const std::uint64_t d = StepWatch::residual(t, side, eps);
    if (T.L == 0) { // right as far as the window sees
        watch.check(T, d);
        T.set_BigFloat(p, pars, F);
        return watch.check(T, f);
    }
    watch.carry(T, d);
    halve(T, pars);
    progress.show(side == Estimate::under ? " U2M " : " O2M ", q);
    const std::uint64_t r = multiply_last(pars, R, T, half_residue(d), F, f, q, watch.on);
    const bool nudged = correct(T, side, p, pars, F, R);
    watch.check_sum(T, side == Estimate::over, F, f, R, r, nudged);
}

} // namespace zvp
