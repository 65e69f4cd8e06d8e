// R is shorter than P and Q, the more so the faster the series converges: the products by R_a have a transform of their own
// length.

#include "series/splitting/exact_steps.h"
#include "series/splitting/float_steps.h"
#include "series/splitting/merge.h"

namespace zvp::BinarySplitting {

using CommonP2B3::Family;
using CommonP2B3::P;
using CommonP2B3::Q;
using CommonP2B3::R;

template <>
void merge<Family>(const MultiplyParameters& pars, NumbersOf<Family, ExactNumber>& a, NumbersOf<Family, ExactNumber>& b,
                   NumbersOf<Family, ExactNumber>& out, bool is_last) {
    ExactNumber& later = out[CommonP2B3::scratch];
    {
        ExactProducts products(pars, a[R].L + (is_last ? b[P].L : std::max(b[P].L, b[R].L)));
        products.keep(later, b[P], a[R]);
        if (!is_last) products.by_kept(out[R], b[R]);
    }
    ExactProducts products(pars, std::max(a[P].L, a[Q].L) + b[Q].L);
    ExactNumber earlier = target_for_sum(out[P], a[P].exp + b[Q].exp, later);
    products.keep(earlier, a[P], b[Q]);
    products.by_kept(out[Q], a[Q]);
    finish_sum(pars, out[P], earlier, later);
    for (const auto i : {P, Q}) strip_low_zeros(out[i]);
    if (!is_last) strip_low_zeros(out[R]);
}

template <>
void merge<Family>(const MultiplyParameters& pars, std::size_t p, NumbersOf<Family, BigFloat>& a,
                   NumbersOf<Family, BigFloat>& b, NumbersOf<Family, BigFloat>& out, bool is_last) {
    BigFloat& later = out[CommonP2B3::scratch];
    {
        const std::size_t longest = cut_product_words(p, a[R], b[P]);
        FloatProducts products(pars, p, is_last ? longest : std::max(longest, cut_product_words(p, a[R], b[R])));
        products.keep(later, b[P], a[R]);
        if (!is_last) products.by_kept(out[R], b[R]);
    }
    FloatProducts products(pars, p, std::max(cut_product_words(p, a[P], b[Q]), cut_product_words(p, a[Q], b[Q])));
    products.keep(out[Q], a[Q], b[Q]);
    products.by_kept(out[P], a[P]);
    products.add(out[P], later);
    for (const auto i : {P, Q}) strip_low_zeros(out[i]);
    if (!is_last) strip_low_zeros(out[R]);
}

template <>
void leaf<Family>(const CommonP2B3::Series& series, const MultiplyParameters& pars, NumbersOf<Family, ExactNumber>& n,
                  std::uint64_t a, std::uint64_t b) {
    series.BSR_E(pars, n[P], n[Q], n[R], n[CommonP2B3::scratch], a, b);
}

} // namespace zvp::BinarySplitting
