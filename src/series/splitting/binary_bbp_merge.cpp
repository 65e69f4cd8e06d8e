#include "series/splitting/exact_steps.h"
#include "series/splitting/float_steps.h"
#include "series/splitting/merge.h"

namespace zvp::BinarySplitting {

using BinaryBBP::Family;
using BinaryBBP::P;
using BinaryBBP::Q;

template <>
void merge<Family>(const MultiplyParameters& pars, NumbersOf<Family, ExactNumber>& a, NumbersOf<Family, ExactNumber>& b,
                   NumbersOf<Family, ExactNumber>& out, bool) {
    ExactProducts products(pars, std::max({a[P].L + b[Q].L, a[Q].L + b[Q].L, b[P].L + a[Q].L}));
    ExactNumber& later = out[BinaryBBP::scratch];
    products.keep(later, b[P], a[Q]);
    ExactNumber earlier = target_for_sum(out[P], a[P].exp + b[Q].exp, later);
    products.exchange(out[Q], b[Q]);
    products.by_kept(earlier, a[P]);
    finish_sum(products.pars(), out[P], earlier, later);
    for (const auto i : {P, Q}) strip_low_zeros(out[i]);
}

template <>
void merge<Family>(const MultiplyParameters& pars, std::size_t p, NumbersOf<Family, BigFloat>& a,
                   NumbersOf<Family, BigFloat>& b, NumbersOf<Family, BigFloat>& out, bool) {
    FloatProducts products(pars, p,
                           std::max({cut_product_words(p, a[P], b[Q]), cut_product_words(p, a[Q], b[Q]),
                                     cut_product_words(p, b[P], a[Q])}));
    BigFloat& later = out[BinaryBBP::scratch];
    products.keep(later, b[P], a[Q]);
    products.exchange(out[Q], b[Q]);
    products.by_kept(out[P], a[P]);
    products.add(out[P], later);
    for (const auto i : {P, Q}) strip_low_zeros(out[i]);
}

template <>
void leaf<Family>(const BinaryBBP::Series& series, const MultiplyParameters& pars, NumbersOf<Family, ExactNumber>& n,
                  std::uint64_t a, std::uint64_t b) {
    series.BSR_E(pars, n[P], n[Q], n[BinaryBBP::scratch], a, b);
}

} // namespace zvp::BinarySplitting
