#include "functions/power_float.h"

#include "functions/power_steps.h"
#include "multiply/tables/algorithm_table.h"
#include "numbers/transforms/big_float_transform.h"
#include "numbers/transforms/transform_helper.h"
#include "parallel/memory/carving.h"

#include <algorithm>
#include <bit>

namespace zvp {

namespace {

/// Two factors of at most w + 2 words, and two words to spare.
std::size_t square_words(std::size_t w) { return 2 * w + 6; }

/// The products of one run: A's form lies at the front of pars.M once it is made, and what others need behind it.
class Products {
public:
    Products(const MultiplyParameters& pars, const BigFloat& A_, std::size_t w_)
        : A(A_),
          w(w_),
          base_words(std::min(w_, A_.L)),
          multiplier(pars, w_ + base_words + 6, 2),
          behind_form(multiplier.pars()) {
        behind_form.M = multiplier.form(1);
        behind_form.ML = pars.ML - multiplier.transform().transform_bytes;
    }

    /// T = A^2. Where the transform is that of the later products, the form of A stays.
    void square_base(BigFloat& T) {
        const TransformHelper helper(behind_form, 2 * base_words + 6, 1);
        if (!helper.transform().compatible(multiplier.transform())) return T.set_sqr(w, behind_form, A);
        const auto cut = static_cast<std::int64_t>(std::min(A.L, w + BigFloat::extra_precision));
        const std::int64_t te = 2 * A.top();
        const std::int64_t ie = std::max(te - static_cast<std::int64_t>(w), te - 2 * cut);
        BigFloatTransformR::sqr_rx_xf(helper.pars(), helper.transform(), helper.M(), T, ie, te, helper.form(0), A, w,
                                      multiplier.form(0), form);
        form.params = &multiplier.transform(); // the helper goes
        form_made = true;
    }

    void square(BigFloat& T) const {
        const TransformHelper helper(behind_form, square_words(std::min(w, T.L)), 1);
        BigFloatTransformR::sqr_r_x(helper.pars(), helper.transform(), helper.M(), T, w, helper.form(0), T);
    }

    /// T *= A. The first time the power is still short; from then on, A's form serves.
    void multiply(BigFloat& T) {
        if (!form_made && first_product) return multiply_short(T);
        if (!form_made)
            form.forward(multiplier.pars(), multiplier.transform(), multiplier.M(), A, w, multiplier.form(0));
        form_made = true;
        const std::int64_t te = T.top() + form.top;
        BigFloatTransformR::mul_rf_xf(multiplier.pars(), multiplier.transform(), multiplier.M(), T, lowest(T, te), te,
                                      multiplier.form(1), T, w, form);
    }

private:
    void multiply_short(BigFloat& T) {
        first_product = false;
        const TransformHelper helper(behind_form, std::min(w, T.L) + base_words + 6, 2);
        const std::int64_t te = T.top() + A.top();
        BigFloatTransformR::mul_rr_xx(helper.pars(), helper.transform(), helper.M(), T, lowest(T, te), te,
                                      helper.form(0), T, w, helper.form(1), A, w);
    }

    /// The lowest position of T * A that is wanted, guard words not counted: T and A both as they are cut.
    std::int64_t lowest(const BigFloat& T, std::int64_t te) const {
        const std::size_t most = w + BigFloat::extra_precision;
        const auto words = static_cast<std::int64_t>(std::min(A.L, most) + std::min(T.L, most));
        return std::max(te - static_cast<std::int64_t>(w), te - words);
    }

    const BigFloat& A;
    const std::size_t w;
    const std::size_t base_words;
    const TransformHelper multiplier;
    MultiplyParameters behind_form;
    BigFloatTransformR form;
    bool form_made = false;
    bool first_product = true;
};

} // namespace

Power_BF_uL_BigFloatR::Power_BF_uL_BigFloatR(std::size_t p_, std::uint32_t tds_) : IterationLimits{p_, tds_} {
    result_words = p + 4;
    std::uint64_t form_bytes, scratch_bytes;
    const std::uint64_t product =
        algorithm_table<wtype>().mSBsizes(form_bytes, scratch_bytes, square_words(p + 2), tds);
    memory_bytes = padded_bytes(form_bytes) + padded_bytes(std::max(product, 2 * form_bytes + scratch_bytes));
}

void Power_BF_uL_BigFloatR::ensure_tables(MultiplyTables& tables) const {
    ensure_product_tables(tables, square_words(p + 2));
}

void Power_BF_uL_BigFloatR::run(const MultiplyParameters& pars, StatusNode* status, BigFloat& T, const BigFloat& A,
                                std::uint64_t n, std::size_t run_p) const {
    check_power_limits(function, *this, run_p, pars.tds);
    check_size(function, T.capacity, run_p + 4);
    const std::size_t w = run_p + 1 + (n >> 32 != 0 ? 1 : 0);
    if (n == 0) {
        T = BigFloat(T.buffer, T.capacity);
        if (!is_dry(T.T)) T.T[0] = 1;
        T.L = 1;
        T.sign = true;
        return;
    }
    if (A.L == 0) return void(T = BigFloat(T.buffer, T.capacity));
    if (n == 1) return T.set_BigFloat(w, pars, A);
    check_size("TransformHelper::TransformHelper()", pars.ML, Power_BF_uL_BigFloatR(run_p, pars.tds).memory_bytes);

    PowerStatus progress(status);
    Products products(pars, A, w);
    std::uint64_t power = 1;
    for (int bit = 62 - std::countl_zero(n); bit >= 0; --bit) {
        progress.show(power);
        power == 1 ? products.square_base(T) : products.square(T);
        trim_low_zeros(T);
        check_exponent(function, T);
        power *= 2;
        if ((n >> bit & 1) == 0) continue;
        progress.show(power);
        products.multiply(T);
        trim_low_zeros(T);
        power += 1;
        check_exponent(function, T);
    }
}

} // namespace zvp
