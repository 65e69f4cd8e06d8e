#pragma once
// Products of a fold: two numbers at a precision, the result in the storage of an operand.

#include "functions/kept_product.h"
#include "numbers/transforms/big_float_transform.h"
#include "numbers/transforms/transform_helper.h"
#include "series/plans/running_numbers.h"

#include <algorithm>

namespace zvp::BinarySplitting {

inline std::size_t cut_words(const BigFloat& A, std::size_t p) { return std::min(A.L, p + BigFloat::extra_precision); }

/// The length to choose a product's transform by: nothing of it folds.
inline std::size_t product_words(const BigFloat& A, const BigFloat& B, std::size_t p) {
    return cut_words(A, p) + cut_words(B, p) + product_margin;
}

/// The positions of A * B that count at precision p.
struct ProductPositions {
    ProductPositions(const BigFloat& A, const BigFloat& B, std::size_t p)
        : te(A.top() + B.top()),
          ie(std::max(te - static_cast<std::int64_t>(p),
                      te - static_cast<std::int64_t>(cut_words(A, p) + cut_words(B, p)))) {}

    std::int64_t te, ie;
};

/// T = A * B at precision p, and B's form is kept in `out` at the helper's form `kept`. T may be A or B.
inline void multiply_keeping(const TransformHelper& helper, BigFloat& T, const BigFloat& A, const BigFloat& B,
                             std::size_t p, std::size_t work, std::size_t kept, BigFloatTransformR& out) {
    const ProductPositions at(A, B, p);
    BigFloatTransformR::mul_rr_xf(helper.pars(), helper.transform(), helper.M(), T, at.ie, at.te, helper.form(work), A,
                                  p, helper.form(kept), B, p, out);
}

/// T = A * B at precision p. T may be A or B.
inline void multiply_in_place(const MultiplyParameters& pars, BigFloat& T, const BigFloat& A, const BigFloat& B,
                              std::size_t p) {
    const TransformHelper helper(pars, product_words(A, B, p), 2);
    const ProductPositions at(A, B, p);
    BigFloatTransformR::mul_rr_xx(helper.pars(), helper.transform(), helper.M(), T, at.ie, at.te, helper.form(0), A, p,
                                  helper.form(1), B, p);
}

} // namespace zvp::BinarySplitting
