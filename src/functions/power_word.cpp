#include "functions/power_word.h"

#include "functions/power_steps.h"
#include "numbers/transforms/big_float_transform.h"
#include "numbers/transforms/transform_helper.h"

#include <algorithm>
#include <bit>

namespace zvp {

namespace {

/// The precision that a power is computed at: long exponents double an error more often.
std::size_t working_precision(std::size_t p, std::uint64_t n) { return p + (n >> 32 != 0 ? 1 : 0); }

std::size_t square_words(std::size_t w) { return 2 * w + 6; }

void square(const MultiplyParameters& pars, BigFloat& T, std::size_t w) {
    const TransformHelper helper(pars, square_words(std::min(w, T.L)), 1);
    BigFloatTransformR::sqr_r_x(helper.pars(), helper.transform(), helper.M(), T, w, helper.form(0), T);
    trim_low_zeros(T);
}

void set_word(BigFloat& T, wtype x) {
    T = BigFloat(T.buffer, T.capacity);
    if (x == 0) return;
    if (!is_dry(T.T)) T.T[0] = x;
    T.L = 1;
    T.sign = true;
}

} // namespace

Power_uW_uL_BigFloatR::Power_uW_uL_BigFloatR(std::size_t p_, std::uint32_t tds_) : IterationLimits{p_, tds_} {
    const std::size_t w = p + 1;
    result_words = w + BigFloat::extra_precision + 1; // a square, and the carry of a word multiply
    memory_bytes = product_memory(square_words(w), tds);
}

void Power_uW_uL_BigFloatR::ensure_tables(MultiplyTables& tables) const {
    ensure_product_tables(tables, square_words(p + 1));
}

void Power_uW_uL_BigFloatR::run(const MultiplyParameters& pars, StatusNode* status, BigFloat& T, wtype x,
                                std::uint64_t n, std::size_t run_p) const {
    check_power_limits(function, *this, run_p, pars.tds);
    check_size(function, T.capacity, run_p + (result_words - p));
    set_word(T, n == 0 ? 1 : x);
    if (n < 2 || x < 2) return;

    PowerStatus progress(status);
    const std::size_t w = working_precision(run_p, n);
    std::uint64_t power = 1;
    for (int bit = 62 - std::countl_zero(n); bit >= 0; --bit) {
        progress.show(power);
        square(pars, T, w);
        power *= 2;
        if ((n >> bit & 1) != 0) {
            progress.show(power);
            T.mul_uW(pars, x);
            power += 1;
            trim_low_zeros(T);
        }
        check_exponent(function, T);
    }
}

} // namespace zvp
