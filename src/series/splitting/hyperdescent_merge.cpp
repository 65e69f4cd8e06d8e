// P_b lies where P_a Q_b will be: it moves to the place of Q_b's words, of which only the form is needed any more.

#include "series/splitting/exact_steps.h"
#include "series/splitting/float_steps.h"
#include "series/splitting/merge.h"

namespace zvp::BinarySplitting {

using Hyperdescent::Family;
using Hyperdescent::P;
using Hyperdescent::Q;

template <>
void merge<Family>(const MultiplyParameters& pars, NumbersOf<Family, ExactNumber>& a, NumbersOf<Family, ExactNumber>& b,
                   NumbersOf<Family, ExactNumber>& out, bool) {
    ExactProducts products(pars, std::max(a[P].L, a[Q].L) + b[Q].L);
    ExactNumber earlier = target_for_sum(out[P], a[P].exp + b[Q].exp, b[P]);
    products.keep(b[Q]);
    ExactNumber later(b[Q].buffer, b[Q].capacity);
    later.set_ExactFloat(products.pars(), b[P]);
    products.by_kept(earlier, a[P]);
    finish_sum(products.pars(), out[P], earlier, later);
    products.by_kept(out[Q], a[Q]);
    for (const auto i : {P, Q}) strip_low_zeros(out[i]);
}

template <>
void merge<Family>(const MultiplyParameters& pars, std::size_t p, NumbersOf<Family, BigFloat>& a,
                   NumbersOf<Family, BigFloat>& b, NumbersOf<Family, BigFloat>& out, bool) {
    FloatProducts products(pars, p, std::max(cut_product_words(p, a[P], b[Q]), cut_product_words(p, a[Q], b[Q])));
    products.keep(b[Q]);
    BigFloat later(b[Q].buffer, b[Q].capacity);
    later.set_BigFloat(p, products.pars(), b[P]);
    products.by_kept(out[P], a[P]);
    products.add(out[P], later);
    products.by_kept(out[Q], a[Q]);
    for (const auto i : {P, Q}) strip_low_zeros(out[i]);
}

template <>
void leaf<Family>(const Hyperdescent::Series& series, const MultiplyParameters& pars, NumbersOf<Family, ExactNumber>& n,
                  std::uint64_t a, std::uint64_t b) {
    series.BSR_E(pars, n[P], n[Q], a, b);
}

} // namespace zvp::BinarySplitting
