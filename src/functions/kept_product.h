#pragma once
// The second product of a Newton step.

#include "functions/step_watch.h"
#include "numbers/transforms/big_float_transform.h"
#include "numbers/transforms/transform_helper.h"

#include <algorithm>

namespace zvp {

/// R = A * B at precision q with B's kept form: the top q words of the product and two guard words, and A cut as far. A
/// goes through the helper's form `index`. R's capacity: q + 2.
inline void multiply_kept(const TransformHelper& helper, std::size_t index, BigFloat& R, const BigFloat& A,
                          std::size_t q, const BigFloatTransformR& B) {
    const auto words = static_cast<std::int64_t>(std::min(A.L, q + BigFloat::extra_precision));
    const std::int64_t te = A.top() + B.top;
    const std::int64_t ie = std::max(te - static_cast<std::int64_t>(q), A.top() - words + B.exp);
    BigFloatTransformR::mul_rf_xf(helper.pars(), helper.transform(), helper.M(), R, ie, te, helper.form(index), A, q,
                                  B);
}

/// The same under watch: A has the residue `known`, b is what B was made from. Returns R's residue.
inline std::uint64_t multiply_kept(const TransformHelper& helper, std::size_t index, BigFloat& R, const BigFloat& A,
                                   std::size_t q, const BigFloatTransformR& B, const StepWatch& watch,
                                   std::uint64_t known, const WatchedFactor& b) {
    multiply_kept(helper, index, R, A, q, B);
    const WatchedFactor a = watch.factor(A, q + BigFloat::extra_precision, known);
    const std::int64_t te = A.top() + B.top;
    const std::int64_t ie = std::max(te - static_cast<std::int64_t>(q), a.exp + b.exp);
    const std::uint64_t r = watch.product(R, a, b, ie, te).window;
    watch.check_unseen(A, a);
    return r;
}

} // namespace zvp
