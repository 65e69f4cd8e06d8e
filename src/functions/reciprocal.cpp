#include "functions/reciprocal.h"

#include "functions/iteration_status.h"
#include "functions/kept_product.h"
#include "functions/residual.h"

#include <algorithm>

namespace zvp {

namespace {

constexpr const char* function = "Reciprocal_BigFloatR::run()";

} // namespace

IterationSizes Reciprocal_BigFloatR::sizes(std::size_t p, std::uint32_t tds) {
    const IterationSizes small = Reciprocal_BigFloatR_E::sizes(std::min(p, transform_precision), tds);
    const std::size_t q = (p >> 1) + 1;
    return {std::max(p + 35, small.result_words), std::max(estimate_words(q) + correction_words(q), small.buffer_words),
            std::max(product_memory(transform_words(p), tds), small.memory_bytes)};
}

Reciprocal_BigFloatR::Reciprocal_BigFloatR(std::size_t p_, std::uint32_t tds_)
    : IterationLimits{p_, tds_}, IterationSizes(sizes(p_, tds_)), small(std::min(p_, transform_precision), tds_) {}

void Reciprocal_BigFloatR::run(const MultiplyParameters& pars, StatusNode* status, BigFloat& T, const BigFloat& A,
                               std::size_t run_p, LinearWordBuffer buffer) const {
    check(run_p < transform_precision ? small.function : function, run_p, pars.tds);
    const IterationSizes needed = sizes(run_p, pars.tds);
    LinearWordBuffer(buffer).cut_from_bottom(needed.buffer_words);
    if (run_p < transform_precision) {
        check_size(function, pars.ML, needed.memory_bytes);
        return small.run(pars, T, A, run_p, buffer);
    }
    check_size(function, T.capacity, run_p + 3);
    TransformHelper(pars, transform_words(run_p), 2);
    check_size(function, pars.ML, needed.memory_bytes);
    iterate(pars, status, T, A, run_p, buffer, true);
    A.check_hash(function, pars);
}

// A lower level has T and the buffer to itself; only then is its result moved away.
void Reciprocal_BigFloatR::iterate(const MultiplyParameters& pars, StatusNode* status, BigFloat& T, const BigFloat& A,
                                   std::size_t p, LinearWordBuffer buffer, bool is_last) {
    if (p < transform_precision) return Reciprocal_BigFloatR_E::iterate(pars, T, A, p, buffer);
    const std::size_t q = previous_precision(p);
    IterationStatus progress(status);
    progress.descend([&](StatusNode* inner) { iterate(pars, inner, T, A, q, buffer, false); });
    BigFloat F = carve(buffer, estimate_words(q));
    BigFloat R = carve(buffer, correction_words(q));
    F.set_BigFloat(q, pars, T);

    const auto words = static_cast<std::int64_t>(p), eps = 2 - static_cast<std::int64_t>(q);
    const TransformHelper helper(pars, transform_words(p), 2);
    const StepWatch watch(function, helper, is_last || p >= StepWatch::least_words);
    const WatchedFactor a = watch.seen_factor(A, p + 2), f = watch.factor(F, p + 2);
    const bool whole = A.L + F.L <= p + 3; // the product of a short A fits in T: then all of it is checked
    const std::int64_t te = whole ? A.top() + F.top() : eps;
    BigFloatTransformR Ft;
    progress.show(" 0M ", q);
    BigFloatTransformR::mul_rr_xf(helper.pars(), helper.transform(), helper.M(), T, -words, te, helper.form(0), A, p,
                                  helper.form(1), F, p, Ft);
    const WatchedProduct product = watch.product(T, a, f, -words, te);

    const ResidualCheck residual{function, q};
    const std::int64_t end = whole ? 0 : eps;
    const std::uint64_t t = subtract_mod(product.window, watch.residue(T, end));
    const Estimate side = whole ? residual.take_whole(T, pars) : residual.take_window(T, eps, pars);
    watch.check_near_one(product, te, side);
    const std::uint64_t d = StepWatch::residual(t, side, end);
    if (T.L == 0) { // right as far as the window sees
        watch.check(T, d);
        T.set_BigFloat(p, pars, F);
        return watch.check(T, f.residue);
    }
    watch.carry(T, d);
    progress.show(side == Estimate::under ? " U1M " : " O1M ", q);
    const std::uint64_t r = multiply_kept(helper, 0, R, T, q, Ft, watch, d, f);
    const bool nudged = correct(T, side, p, pars, F, R);
    watch.check_sum(T, side == Estimate::over, F, f.residue, R, r, nudged);
}

} // namespace zvp
