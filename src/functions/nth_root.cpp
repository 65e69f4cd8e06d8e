#include "functions/nth_root.h"

#include "app/console/number_forms.h"
#include "app/failure/exceptions.h"
#include "functions/iteration_status.h"
#include "functions/residual.h"
#include "numbers/transforms/big_float_transform.h"
#include "numbers/transforms/transform_helper.h"

#include <algorithm>

namespace zvp {

namespace {

constexpr const char* function = InvNthRootFloat_BigFloatR_P::function;
constexpr std::size_t small_words = 16; // of each number below 10 words

std::size_t correction_words(std::size_t p) {
    const std::size_t h = p >> 1;
    return std::max((std::max(h + 5, h + 7) + 15) & ~std::size_t{15}, small_words);
}
std::size_t estimate_words(std::size_t p) { return std::max(((p >> 1) + 23) & ~std::size_t{15}, small_words); }

/// Degrees that move the residual up by half a word or more: their steps start from a word more of precision.
bool is_large(wtype n) { return n >= wtype{1} << 16; }

std::size_t lower_precision(std::size_t p, wtype n) { return p / 2 + (is_large(n) ? 2 : 1); }

/// Whether |X| < residual_limit * n * W^pos.
bool is_root_residual(const BigFloat& X, std::int64_t pos, wtype n) {
    if (X.L > 0 && X.top() > pos + 2) return false;
    const std::uint64_t top = std::uint64_t{X.get_word(pos + 1)} << 32 | X.get_word(pos);
    return top < std::uint64_t{residual_limit} * n;
}

/// E = R - F modulo W^bound, both without the words from there on; the words at bound - 1 are equal, or one more and one
/// less where a borrow passes.
void set_residual(BigFloat& E, std::size_t p, const ParallelContext& ctx, const BigFloat& R, const BigFloat& F,
                  std::int64_t bound, wtype n) {
    if (is_dry(E.buffer)) {
        E.set_sub(p, ctx, R, F);
        return cut_dry(E, bound - 1);
    }
    constexpr wtype ones = ~wtype{0};
    const wtype topA = R.get_word(bound - 1), topB = F.get_word(bound - 1);
    if (topA == ones && topB == 0)
        E.set_rsub(p, ctx, F, R, bound, false);
    else if (topA == 0 && topB == ones)
        E.set_rsub(p, ctx, R, F, bound, true);
    else
        E.set_sub(p, ctx, R, F);
    if (!is_root_residual(E, bound - 3, n))
        throw AlgorithmFailedException(function, "Convergence Failure:\n    topA = " + format_number(topA)
                                                     + "\n    topB = " + format_number(topB));
}

[[noreturn, gnu::cold]] void fail_bound(Estimate side, std::size_t q, const BigFloat& T) {
    throw AlgorithmFailedException(function, std::string(side == Estimate::under ? "Under" : "Over")
                                                 + "-Estimate -> Convergence Failure:\n    Maximum Error = "
                                                 + format_signed(-static_cast<std::int64_t>(q))
                                                 + "\n    Actual Error  = " + format_signed(T.top()));
}

} // namespace

InvNthRootFloat_BigFloatR_P::InvNthRootFloat_BigFloatR_P(std::size_t p_, std::uint32_t tds_)
    : IterationLimits{p_, tds_}, power(std::max<std::size_t>(p_, transform_precision + 1), tds_) {
    result_words = std::max(p + 4, small_words);
    buffer_words = correction_words(p) + estimate_words(p);
    const std::size_t longest = std::max<std::size_t>(p + p / 2 + 11, 2 * (transform_precision + 5));
    memory_bytes = std::max(power.memory_bytes, product_memory(longest, tds));
}

void InvNthRootFloat_BigFloatR_P::ensure_tables(MultiplyTables& tables) const {
    power.ensure_tables(tables);
    ensure_product_tables(tables, p + p / 2 + 11);
}

void InvNthRootFloat_BigFloatR_P::run(const MultiplyParameters& pars, StatusNode* status, BigFloat& T,
                                      const BigFloat& A, wtype n, std::size_t run_p, LinearWordBuffer buffer) const {
    check(function, run_p, pars.tds);
    if (n == 0) throw InvalidParametersException(function, "There is no root of degree zero.");
    check_size(function, T.capacity, std::max(run_p + 4, small_words));
    BigFloat R = carve(buffer, correction_words(run_p));
    BigFloat S = carve(buffer, estimate_words(run_p));
    check_size(function, pars.ML, InvNthRootFloat_BigFloatR_P(run_p, pars.tds).memory_bytes);
    n % 2 != 0 ? run_expanded(pars, status, T, A, n, run_p, R, S) : run_factored(pars, status, T, A, n, run_p, R, S);
}

// Both forms keep the lower level's result in S while T takes the power; T, R and S are all a lower level's own.

void InvNthRootFloat_BigFloatR_P::run_expanded(const MultiplyParameters& pars, StatusNode* status, BigFloat& T,
                                               const BigFloat& A, wtype n, std::size_t run_p, BigFloat& R,
                                               BigFloat& S) const {
    if (run_p < transform_precision) return InvNthRootFloat_BigFloatR_E::run(pars, power, T, A, n, run_p, R, S);
    const std::size_t q = lower_precision(run_p, n);
    IterationStatus progress(status);
    progress.descend([&](StatusNode* inner) { run_expanded(pars, inner, T, A, n, q, R, S); });
    S.set_BigFloat(q, pars, T);
    progress.show(" 0P ", q);
    power.run(pars, nullptr, T, S, std::uint64_t{n} + 1, run_p);
    place_dry(T, S.top() + 1 - A.top());

    const auto words = static_cast<std::int64_t>(run_p), half = static_cast<std::int64_t>(q);
    const std::int64_t top = S.top(), bound = std::min(top - half + 3, top);
    progress.show(" 1M ", q);
    const TransformHelper helper(pars, run_p + q + 9, 2);
    BigFloatTransformR::mul_rr_xx(helper.pars(), helper.transform(), helper.M(), R, top - words, bound, helper.form(0),
                                  T, run_p, helper.form(1), A, run_p);
    BigFloat Fc = S;
    Fc.truncate_at(bound, pars);
    set_residual(T, q + 3, pars, R, Fc, bound, n);
    divide_by_word(R, q + 3, pars, T, n);
    T.set_sub(run_p, pars, S, R);
}

void InvNthRootFloat_BigFloatR_P::run_factored(const MultiplyParameters& pars, StatusNode* status, BigFloat& T,
                                               const BigFloat& A, wtype n, std::size_t run_p, BigFloat& R,
                                               BigFloat& S) const {
    if (run_p < transform_precision) return InvNthRootFloat_BigFloatR_E::run(pars, power, T, A, n, run_p, R, S);
    const std::size_t q = lower_precision(run_p, n);
    IterationStatus progress(status);
    progress.descend([&](StatusNode* inner) { run_factored(pars, inner, T, A, n, q, R, S); });
    S.set_BigFloat(q, pars, T);
    progress.show(" 0P ", q);
    power.run(pars, nullptr, T, S, n, run_p);
    place_dry(T, 1 - A.top());

    const auto words = static_cast<std::int64_t>(run_p), eps = (is_large(n) ? 3 : 2) - static_cast<std::int64_t>(q);
    progress.show(" 1M ", q);
    {
        const TransformHelper helper(pars, run_p + q + 8, 2);
        BigFloatTransformR::mul_rr_xx(helper.pars(), helper.transform(), helper.M(), T, -words, eps, helper.form(0), T,
                                      run_p, helper.form(1), A, run_p);
    }
    if (T.L == 0) return T.set_BigFloat(run_p, pars, S); // right as far as the window sees
    const Estimate side = ResidualCheck{function, q - 1}.take_window(T, eps, pars);
    if (T.L == 0) return T.set_BigFloat(run_p, pars, S);
    if (!is_root_residual(T, -static_cast<std::int64_t>(q), n)) fail_bound(side, q, T);
    MultiplyParameters silent = pars;
    silent.status = nullptr;
    progress.show(side == Estimate::under ? " U2M " : " O2M ", q);
    R.set_mul(q, silent, T, S);
    progress.show(side == Estimate::under ? " U3D " : " O3D ", q);
    divide_by_word(T, q, pars, R, n);
    R.set_BigFloat(q, pars, T);
    correct(T, side, run_p, pars, S, R);
}

} // namespace zvp
