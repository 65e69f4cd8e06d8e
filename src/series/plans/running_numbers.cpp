#include "series/plans/running_numbers.h"

#include "series/plans/fold_products.h"

namespace zvp::BinarySplitting {

void Folding<CommonP2B3::Family>::take(const MultiplyParameters& pars, const BlockPrecision& p, const Numbers& block,
                                       Running& running) {
    running[0].set_BigFloat(p.at_a, pars, block[CommonP2B3::P]);
    running[1].set_BigFloat(p.at_a, pars, block[CommonP2B3::Q]);
}

void Folding<CommonP2B3::Family>::fold(const MultiplyParameters& pars, const BlockPrecision& p, Numbers& block,
                                       Running& running) {
    auto& [P_run, Q_run] = running;
    auto& [P, Q, R, scratch] = block;
    {
        const std::size_t words = std::max(product_words(P, Q_run, p.at_a), product_words(Q, Q_run, p.at_a));
        const TransformHelper helper(pars, words, 2);
        BigFloatTransformR Q_form;
        multiply_keeping(helper, P, P, Q_run, p.at_a, 0, 1, Q_form);
        multiply_kept(helper, 0, Q_run, Q, p.at_a, Q_form);
    }
    multiply_in_place(pars, R, P_run, R, p.at_b);
    P_run.set_add(p.at_a, pars, P, R);
}

void Folding<BinaryBBP::Family>::take(const MultiplyParameters& pars, const BlockPrecision& p, const Numbers& block,
                                      Running& running) {
    running[0].set_BigFloat(p.at_a, pars, block[BinaryBBP::P]);
    running[1].set_BigFloat(p.at_a, pars, block[BinaryBBP::Q]);
}

// Two forms do: that of Q_run ends as its product with Q's, which then waits for P_run.
void Folding<BinaryBBP::Family>::fold(const MultiplyParameters& pars, const BlockPrecision& p, Numbers& block,
                                      Running& running) {
    auto& [P_run, Q_run] = running;
    auto& [P, Q, scratch] = block;
    const std::size_t words =
        std::max({product_words(P, Q_run, p.at_a), product_words(Q, Q_run, p.at_a), product_words(P_run, Q, p.at_a)});
    const TransformHelper helper(pars, words, 2);
    BigFloatTransformR Q_run_form, Q_form;
    multiply_keeping(helper, P, P, Q_run, p.at_a, 0, 1, Q_run_form);
    Q_form.forward(helper.pars(), helper.transform(), helper.M(), Q, p.at_a, helper.form(0));
    Q_run_form.inverse_fmul(helper.pars(), helper.M(), Q_run, p.at_a, Q_form);
    multiply_kept(helper, 1, Q, P_run, p.at_a, Q_form);
    P_run.set_add(p.at_a, pars, P, Q);
}

void Folding<BrentMcMillanAB::Family>::take(const MultiplyParameters& pars, const BlockPrecision& p,
                                            const Numbers& block, Running& running) {
    running[0].set_BigFloat(p.at_a, pars, block[BrentMcMillanAB::N1]);
    running[1].set_BigFloat(p.at_a, pars, block[BrentMcMillanAB::N2]);
    running[2].set_BigFloat(p.at_a, pars, block[BrentMcMillanAB::N3]);
}

void Folding<BrentMcMillanAB::Family>::fold(const MultiplyParameters& pars, const BlockPrecision& p, Numbers& block,
                                            Running& running) {
    const std::size_t precision = p.at_a;
    auto& [b1, b2, b3] = running;
    auto& [a0, a1, a2, a3, w, x, s] = block;
    multiply_in_place(pars, s, b2, a0, precision);
    // Powers of b1: products of whole operands, so that one transform for the longest serves all.
    const TransformHelper helper(pars, longest_product(p), 2);
    BigFloatTransformR form;
    const ProductPositions square(b1, b1, precision);
    BigFloatTransformR::sqr_rx_xf(helper.pars(), helper.transform(), helper.M(), w, square.ie, square.te,
                                  helper.form(0), b1, precision, helper.form(1), form);
    multiply_kept(helper, 0, s, s, precision, form);
    multiply_kept(helper, 0, x, w, precision, form);
    multiply_in_place(pars, a3, a3, x, precision);
    x.set_add(precision, pars, a3, s);
    multiply_in_place(pars, s, a2, w, precision);
    a2.set_add(precision, pars, s, b2);
    b2.set_BigFloat(precision, pars, a2);
    multiply_keeping(helper, s, b3, a1, precision, 0, 1, form);
    multiply_kept(helper, 0, b1, b1, precision, form);
    b3.set_add(precision, pars, s, x);
}

} // namespace zvp::BinarySplitting
