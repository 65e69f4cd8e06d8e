#pragma once
// What the truncated merges have in common.

#include "multiply/words/parallel_words.h"
#include "numbers/transforms/big_float_transform.h"
#include "numbers/transforms/transform_helper.h"
#include "series/splitting/block_plan.h"
#include "series/splitting/exact_steps.h"
#include "series/splitting/family_numbers.h"

#include <algorithm>

namespace zvp::BinarySplitting {

/// The words that a product of the top p + 2 words of A and B has.
inline std::size_t cut_product_words(std::size_t p, const BigFloat& A, const BigFloat& B) {
    const std::size_t kept = p + BigFloat::extra_precision;
    return std::min(A.L, kept) + std::min(B.L, kept);
}

/// Products at precision p of up to `longest` words with one operand kept as a forward form. A result has the top p + 2
/// words of the product.
class FloatProducts {
public:
    FloatProducts(const MultiplyParameters& pars, std::size_t p_, std::size_t longest)
        : helper(pars, longest + merge_spare, 2), p(p_) {}

    /// Keeps B's form in place of the one before.
    void keep(const BigFloat& B) { kept.forward(helper.pars(), helper.transform(), helper.M(), B, p, kept_area()); }

    /// T = A * B; B's form is kept in place of the one before.
    void keep(BigFloat& T, const BigFloat& A, const BigFloat& B) {
        const std::int64_t te = A.top() + B.top();
        BigFloatTransformR::mul_rr_xf(helper.pars(), helper.transform(), helper.M(), T, from(te, low_of(A) + low_of(B)),
                                      te, free_area(), A, p, kept_area(), B, p, kept);
    }

    /// T = A * the number kept.
    void by_kept(BigFloat& T, const BigFloat& A) {
        const std::int64_t te = A.top() + kept.top;
        BigFloatTransformR::mul_rf_xf(helper.pars(), helper.transform(), helper.M(), T, from(te, low_of(A) + kept.exp),
                                      te, free_area(), A, p, kept);
    }

    /// T = B * the number kept, in whose place B's form is kept.
    void exchange(BigFloat& T, const BigFloat& B) {
        BigFloatTransformR next;
        next.forward(helper.pars(), helper.transform(), helper.M(), B, p, free_area());
        kept.inverse_fmul(helper.pars(), helper.M(), T, p, next);
        kept = next;
        slot = 1 - slot;
    }

    /// T = the square of the number kept.
    void square(BigFloat& T) {
        const std::int64_t te = 2 * kept.top;
        kept.inverse_fsqr(helper.pars(), helper.M(), T, from(te, 2 * kept.exp), te, free_area());
    }

    /// target = target + B at precision p. What is in target moves aside, to where no form is kept.
    void add(BigFloat& target, const BigFloat& B) const {
        BigFloat aside(reinterpret_cast<wtype*>(free_area()), target.L);
        aside.set_BigFloat(target.L, helper.pars(), target);
        target.set_add(p, helper.pars(), aside, B);
    }

    const MultiplyParameters& pars() const { return helper.pars(); }

private:
    std::int64_t from(std::int64_t te, std::int64_t low) const {
        return std::max(te - static_cast<std::int64_t>(p), low);
    }

    std::int64_t low_of(const BigFloat& A) const {
        return A.top() - static_cast<std::int64_t>(std::min(A.L, p + BigFloat::extra_precision));
    }

    std::byte* kept_area() const { return helper.form(slot); }
    std::byte* free_area() const { return helper.form(1 - slot); }

    TransformHelper helper;
    BigFloatTransformR kept;
    std::size_t p;
    std::size_t slot = 0;
};

} // namespace zvp::BinarySplitting
