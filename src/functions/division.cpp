#include "functions/division.h"

#include "app/console/number_forms.h"
#include "app/failure/exceptions.h"
#include "functions/iteration_status.h"
#include "functions/iteration_task.h"
#include "functions/kept_product.h"
#include "functions/residual.h"
#include "multiply/tables/algorithm_table.h"
#include "parallel/memory/carving.h"

#include <algorithm>

namespace zvp {

namespace {

constexpr const char* function = "Division_BigFloatR::run()";

/// The residue of E = N - R, N without sign, by those of N's and R's words; R has `carry` more above the bound. Throws if E
/// has another.
std::uint64_t checked_residual(const StepWatch& watch, const BigFloat& E, std::uint64_t n, std::uint64_t r,
                               std::int64_t bound, bool N_sign, int carry) {
    if (!watch.on) return 0;
    const std::uint64_t e = watch.residue(E), all = carry != 0 ? pow_word(bound) : 0;
    const std::uint64_t difference = subtract_mod(n, carry < 0 ? subtract_mod(r, all) : add_mod(r, all));
    if (E.L > 0 && difference != (E.sign == N_sign ? e : hash_negate(e))) watch.fail();
    if (E.L == 0 && difference != 0) watch.fail();
    return e;
}

/// E = N - R, of which the words below `bound` are at hand. A right quotient leaves a residual as small as a step of
/// the reciprocal, so that the words at bound - 1 are equal, or one more and one less where a borrow passes; where it
/// passes through the end of the window, the difference is taken modulo W^bound. Returns how many more the product has above
/// it than N.
int set_residual(BigFloat& E, std::size_t p, const ParallelContext& ctx, const BigFloat& N, const BigFloat& R,
                 std::int64_t bound, bool N_sign) {
    if (is_dry(E.buffer)) {
        E.set_sub(p, ctx, N, R);
        cut_dry(E, bound - 2);
        return 0;
    }
    constexpr wtype ones = ~wtype{0};
    const wtype topA = R.get_word(bound - 1);
    const wtype topB = N.get_word(bound - 1);
    int carry = 0;
    if (topA == ones && topB == 0) {
        E.set_rsub(p, ctx, N, R, bound, N_sign);
        carry = -1;
    } else if (topA == 0 && topB == ones) {
        E.set_rsub(p, ctx, R, N, bound, !N_sign);
        carry = 1;
    } else {
        E.set_sub(p, ctx, N, R);
    }
    if (!is_residual(E, bound - 3))
        throw AlgorithmFailedException(function, "Convergence Failure:\n    topA = " + format_number(topA)
                                                     + "\n    topB = " + format_number(topB));
    return carry;
}

} // namespace

Division_BigFloatR::Division_BigFloatR(std::size_t p_, std::uint32_t tds_)
    : IterationLimits{p_, tds_}, q((p_ >> 1) + 1), reciprocal(q, tds_) {
    TransformObject object;
    const Transform& transform = algorithm_table<wtype>().get_algorithm(p + 9).params(object, p + 9, tds);
    transform_bytes = transform.transform_bytes;
    scratch_bytes = transform.scratch_bytes;
    x_words = padded_words(std::max(p - q + 5, reciprocal.result_words));
    r_words = (q + 17) & ~std::size_t{15};
    e_words = (q + 20) & ~std::size_t{15};
    buffer_words = x_words + std::max(r_words + e_words, reciprocal.buffer_words);
    result_words = p + 2;
    memory_bytes = std::max(3 * transform_bytes + scratch_bytes, reciprocal.memory_bytes);
    if (p < transform_precision) memory_bytes = std::max(memory_bytes, product_memory(2 * (p + 3), tds));
}

void Division_BigFloatR::run(const MultiplyParameters& pars, StatusNode* status, BigFloat& T, const BigFloat& N,
                             const BigFloat& D, LinearWordBuffer buffer) const {
    if (pars.tds != tds) throw InvalidParametersException("Division_BigFloatR<wtype>::run()", "Mismatching tds.");
    check_size(function, T.capacity, result_words);
    check_size(function, pars.ML, memory_bytes);
    check_size(function, buffer.words, buffer_words);
    if (N.L == 0)
        T = BigFloat(T.buffer, T.capacity);
    else if (p < transform_precision)
        run_small(pars, T, N, D, buffer);
    else
        run_large(pars, status, T, N, D, buffer);
}

void Division_BigFloatR::run_task(const MultiplyParameters& pars, StatusSink* sink, BigFloat& T, const BigFloat& N,
                                  const BigFloat& D, LinearWordBuffer buffer) const {
    run_as_task(sink, "Large Division...", [&](StatusNode* status) { run(pars, status, T, N, D, buffer); });
}

void Division_BigFloatR::run_small(const MultiplyParameters& pars, BigFloat& T, const BigFloat& N, const BigFloat& D,
                                   LinearWordBuffer buffer) const {
    BigFloat X = carve(buffer, p + 3);
    Reciprocal_BigFloatR_E(p, tds).run(pars, X, D, p, buffer);
    T.set_mul(p, pars, N, X);
}

void Division_BigFloatR::run_large(const MultiplyParameters& pars, StatusNode* status, BigFloat& T, const BigFloat& N,
                                   const BigFloat& D, LinearWordBuffer buffer) const {
    IterationStatus progress(status);
    BigFloat X = carve(buffer, x_words);
    progress.descend([&](StatusNode* inner) { reciprocal.run(pars, inner, X, D, q, buffer); });
    BigFloat Q = carve(buffer, r_words);
    BigFloat E = carve(buffer, e_words);

    const TransformHelper helper(pars, p + 9, 3);
    const StepWatch watch(function, helper, true);
    const WatchedFactor x = watch.factor(X, q + 2);
    BigFloatTransformR Xt;
    Xt.forward(helper.pars(), helper.transform(), helper.M(), X, q, helper.form(0));
    BigFloat top_N = N;
    top_N.watched = false;
    top_N.L = std::min(N.L, q + BigFloat::extra_precision);
    top_N.T += N.L - top_N.L;
    top_N.exp += static_cast<std::int64_t>(N.L - top_N.L);
    const std::uint64_t q_residue =
        multiply_kept(helper, 1, Q, top_N, q, Xt, watch, watch.factor(N, q + BigFloat::extra_precision).residue, x);

    const auto words = static_cast<std::int64_t>(p), half = static_cast<std::int64_t>(q);
    const std::int64_t bound = std::min(N.top() - half + 3, N.top());
    BigFloat& R = X; // of X only the form is needed from here on
    progress.show(" 1M ", q);
    BigFloatTransformR::mul_rr_xx(helper.pars(), helper.transform(), helper.M(), R, N.top() - words, bound,
                                  helper.form(1), D, p, helper.form(2), Q, p);
    const WatchedProduct product =
        watch.product(R, watch.seen_factor(D, p + 2), watch.factor(Q, p + 2, q_residue), N.top() - words, bound);
    BigFloat Nc = N;
    Nc.truncate_at(bound, pars);
    const int carry = set_residual(E, q + 3, pars, Nc, R, bound, N.sign);
    watch.check_near(product, bound, N, carry);
    // Of a difference that vanishes, q + 4 words did.
    const std::int64_t low = E.L > 0 ? E.exp : std::max(Nc.top(), R.top()) - half - 4;
    const std::uint64_t r = subtract_mod(product.window, watch.residue(R, StepWatch::lowest, low));
    const std::uint64_t e = checked_residual(watch, E, watch.residue(Nc, low), r, bound, N.sign, carry);

    progress.show(" 2M ", q);
    const std::uint64_t c = multiply_kept(helper, 1, R, E, q, Xt, watch, e, x);
    const bool minus = Q.sign != R.sign;
    T.set_add(p, pars, Q, R);
    watch.check_sum(T, minus, Q, q_residue, R, c, false);
    N.check_hash(function, pars);
    D.check_hash(function, pars);
}

} // namespace zvp
