#pragma once
// What the exact merges have in common.

#include "digits/hash/hash_field.h"
#include "numbers/transforms/exact_float_transform.h"
#include "numbers/transforms/transform_helper.h"
#include "series/splitting/block_plan.h"
#include "series/splitting/family_numbers.h"

#include <type_traits>

namespace zvp::BinarySplitting {

using ExactForm = ExactFloatTransformR<wtype>;

/// Products of up to `longest` words with one operand kept as a forward form.
class ExactProducts {
public:
    ExactProducts(const MultiplyParameters& pars, std::size_t longest) : helper(pars, longest + merge_spare, 2) {}

    /// Keeps B's form in place of the one before.
    void keep(const ExactNumber& B) { kept.forward(helper.pars(), helper.transform(), helper.M(), B, kept_area()); }

    /// T = A * B; B's form is kept in place of the one before.
    void keep(ExactNumber& T, const ExactNumber& A, const ExactNumber& B) {
        ExactForm::mul_rr_xf(helper.pars(), helper.transform(), helper.M(), T, free_area(), A, kept_area(), B, kept);
    }

    /// T = A * the number kept.
    void by_kept(ExactNumber& T, const ExactNumber& A) {
        ExactForm::mul_rf_xf(helper.pars(), helper.transform(), helper.M(), T, free_area(), A, kept);
    }

    /// T = B * the number kept, in whose place B's form is kept.
    void exchange(ExactNumber& T, const ExactNumber& B) {
        ExactForm next;
        next.forward(helper.pars(), helper.transform(), helper.M(), B, free_area());
        kept.inverse_fmul(helper.pars(), helper.M(), T, next);
        kept = next;
        slot = 1 - slot;
    }

    /// T = the square of the number kept.
    void square(ExactNumber& T) { kept.inverse_fsqr(helper.pars(), helper.M(), T, free_area()); }

    const MultiplyParameters& pars() const { return helper.pars(); }

private:
    std::byte* kept_area() const { return helper.form(slot); }
    std::byte* free_area() const { return helper.form(1 - slot); }

    TransformHelper helper;
    ExactForm kept;
    std::size_t slot = 0;
};

/// A target on `storage` for a product with its lowest word at `exp`, placed so high that a number with its lowest word at
/// `addend_exp` can be added to it in place.
inline ExactNumber target_for_sum(const ExactNumber& storage, std::int64_t exp, std::int64_t addend_exp) {
    const auto below = exp > addend_exp ? static_cast<std::size_t>(exp - addend_exp) : 0;
    const std::size_t room = below < storage.capacity ? below : storage.capacity;
    return ExactNumber(storage.buffer + room, storage.capacity - room);
}

inline ExactNumber target_for_sum(const ExactNumber& storage, std::int64_t exp, const ExactNumber& addend) {
    return target_for_sum(storage, exp, addend.L > 0 ? addend.exp : exp);
}

/// sum = product + addend, for a product that was made on target_for_sum(sum, ..).
inline void finish_sum(const ParallelContext& ctx, ExactNumber& sum, const ExactNumber& product,
                       const ExactNumber& addend) {
    wtype* const buffer = sum.buffer;
    const std::size_t capacity = sum.capacity;
    sum = product;
    sum.buffer = buffer;
    sum.capacity = capacity;
    sum.add_ip(ctx, addend);
}

/// Low zero words go, by multiples of number_alignment, so that T stays aligned.
template <class Number>
void strip_low_zeros(Number& A) {
    if (is_dry(A.T)) return;
    const auto block_is_zero = [&A] {
        for (std::size_t i = 0; i < number_alignment; ++i)
            if (A.T[i] != 0) return false;
        return true;
    };
    while (A.L > number_alignment && block_is_zero()) {
        A.T += number_alignment;
        A.L -= number_alignment;
        A.exp += std::int64_t{number_alignment};
        if constexpr (std::is_same_v<Number, BigFloat>) A.hash = shift_words(A.hash, -std::int64_t{number_alignment});
    }
}

} // namespace zvp::BinarySplitting
