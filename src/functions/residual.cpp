#include "functions/residual.h"

#include "app/console/number_forms.h"
#include "app/failure/exceptions.h"

#include <algorithm>
#include <string>

namespace zvp {

void cut_dry(BigFloat& E, std::int64_t top) {
    E.L = static_cast<std::size_t>(std::clamp<std::int64_t>(top - E.exp, 1, static_cast<std::int64_t>(E.L)));
}

Estimate ResidualCheck::take_whole(BigFloat& T, const ParallelContext& ctx) const {
    if (is_dry(T.buffer)) return cut_dry(T, 1 - static_cast<std::int64_t>(q)), Estimate::over;
    const wtype top = T.get_word(0);
    if (T.L == 0 || top > 1 || T.top() != static_cast<std::int64_t>(top)) fail(top);
    T.truncate_at(0, ctx);
    return take(T, top == 0 ? Estimate::under : Estimate::over, ctx);
}

Estimate ResidualCheck::take_window(BigFloat& T, std::int64_t eps, const ParallelContext& ctx) const {
    if (is_dry(T.buffer)) return cut_dry(T, 1 - static_cast<std::int64_t>(q)), Estimate::over;
    const wtype top = T.get_word(eps - 1);
    if (top != 0 && top != ~wtype{0}) fail(top);
    T.truncate_at(eps, ctx);
    return take(T, top == 0 ? Estimate::over : Estimate::under, ctx);
}

Estimate ResidualCheck::take(BigFloat& T, Estimate side, const ParallelContext& ctx) const {
    if (side == Estimate::under) {
        T.complement_ip(ctx);
        check_bound("Under", T);
    } else {
        check_bound("Over", T);
    }
    return side;
}

void ResidualCheck::check_bound(const char* side, const BigFloat& T) const {
    if (is_residual(T, -static_cast<std::int64_t>(q))) return;
    throw AlgorithmFailedException(function, std::string(side)
                                                 + "-Estimate -> Convergence Failure:\n    Maximum Error = "
                                                 + format_signed(-static_cast<std::int64_t>(q))
                                                 + "\n    Actual Error  = " + format_signed(T.top()));
}

void ResidualCheck::fail(wtype top) const {
    throw AlgorithmFailedException(function, "Convergence Failure:\n    top = " + format_number(top));
}

bool correct(BigFloat& T, Estimate side, std::size_t p, const ParallelContext& ctx, const BigFloat& F,
             const BigFloat& R) {
    if (side == Estimate::under)
        T.set_add(p, ctx, F, R);
    else
        T.set_sub(p, ctx, F, R);
    const bool nudged = T.L > p;
    if (nudged) T.purturb_up(0);
    return nudged;
}

void halve(BigFloat& T, const ParallelContext& ctx) {
    if (T.L == 0) return;
    T.exp -= 1;
    T.mul_uW(ctx, wtype{1} << (BigFloat::w - 1));
}

} // namespace zvp
