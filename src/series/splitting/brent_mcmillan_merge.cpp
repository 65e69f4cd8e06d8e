// The order of the products, and where they go. a_i lies at the start of N_i's storage, b_i behind it; s0, s1, s2 are the
// scratch numbers. Each group of products has transforms of its own length.
//
//     t = b3 a1     to s0
//     u = b0 a1     to s1            N1 = a1 b1     to N1, a copy of b1 behind it
//     v = a0 b1     to N0            w = b1^2       to s2
//     x = b2 v      behind v         t = t + x      in s0
//     y = a2 w      to N2, b2 to b3's place         x = w b1   behind v
//     N2 = y + b2   in N2
//     z = a3 x      to N3            N3 = z + t     in N3
//     N0 = v + u    in N0
//
// v and x are, in nats, 2 g(a, b) + 2 g(m, b) + t(m, b) with g the size of N1, where N3 has 3 g(a, b) + t(a, b): m halves
// the latter, so that N0's storage, as long as N3's, holds both.

#include "series/splitting/exact_steps.h"
#include "series/splitting/float_steps.h"
#include "series/splitting/merge.h"

namespace zvp::BinarySplitting {

using BrentMcMillanAB::Family;
using BrentMcMillanAB::N0;
using BrentMcMillanAB::N1;
using BrentMcMillanAB::N2;
using BrentMcMillanAB::N3;
using BrentMcMillanAB::scratch0;
using BrentMcMillanAB::scratch1;
using BrentMcMillanAB::scratch2;

namespace {

/// The storage of `target` from the first multiple of number_alignment behind `end` on.
template <class Number>
Number storage_behind(const Number& target, const wtype* end) {
    const auto used = static_cast<std::size_t>(end - target.buffer);
    const std::size_t skipped =
        std::min((used + number_alignment - 1) / number_alignment * number_alignment, target.capacity);
    return Number(target.buffer + skipped, target.capacity - skipped);
}

/// Storage in that of N1, free of a1 b1 and of b1.
template <class Number>
Number storage_behind_product(const Number& out, const Number& a, const Number& b) {
    const wtype* const product_end = out.buffer + a.L + b.L;
    return storage_behind(out, std::max(product_end, static_cast<const wtype*>(b.T + b.L)));
}

} // namespace

template <>
void merge<Family>(const MultiplyParameters& pars, NumbersOf<Family, ExactNumber>& a, NumbersOf<Family, ExactNumber>& b,
                   NumbersOf<Family, ExactNumber>& out, bool is_last) {
    const std::int64_t v_exp = a[N0].exp + b[N1].exp;
    ExactNumber& u = out[scratch1];
    ExactNumber& w = out[scratch2];
    ExactNumber t = target_for_sum(out[scratch0], b[N3].exp + a[N1].exp, b[N2].exp + v_exp);
    ExactProducts(pars, b[N3].L + a[N1].L).keep(t, b[N3], a[N1]);

    ExactNumber b1 = storage_behind_product(out[N1], a[N1], b[N1]);
    b1.set_ExactFloat(pars, b[N1]);
    ExactNumber v;
    {
        ExactProducts products(pars,
                               std::max(a[N0].L, std::max(a[N1].L, b1.L)) + std::max(b1.L, is_last ? 0 : b[N0].L));
        if (is_last)
            products.keep(a[N1]);
        else
            products.keep(u, b[N0], a[N1]);
        products.exchange(out[N1], b1);
        v = is_last ? out[N0] : target_for_sum(out[N0], v_exp, u);
        products.by_kept(v, a[N0]);
        products.square(w);
    }
    ExactNumber x = storage_behind(out[N0], v.T + v.L);
    ExactProducts(pars, b[N2].L + v.L).keep(x, b[N2], v);
    finish_sum(pars, out[scratch0], t, x);
    ExactNumber b2(b[N3].buffer, b[N3].capacity);
    b2.set_ExactFloat(pars, b[N2]);
    ExactNumber y = target_for_sum(out[N2], a[N2].exp + w.exp, b2);
    {
        ExactProducts products(pars, std::max(a[N2].L, b1.L) + w.L);
        products.keep(y, a[N2], w);
        products.by_kept(x, b1);
    }
    finish_sum(pars, out[N2], y, b2);
    ExactNumber z = target_for_sum(out[N3], a[N3].exp + x.exp, out[scratch0]);
    ExactProducts(pars, a[N3].L + x.L).keep(z, a[N3], x);
    finish_sum(pars, out[N3], z, out[scratch0]);
    if (!is_last) finish_sum(pars, out[N0], v, u);
    for (const auto i : {N1, N2, N3}) strip_low_zeros(out[i]);
    if (!is_last) strip_low_zeros(out[N0]);
}

template <>
void merge<Family>(const MultiplyParameters& pars, std::size_t p, NumbersOf<Family, BigFloat>& a,
                   NumbersOf<Family, BigFloat>& b, NumbersOf<Family, BigFloat>& out, bool is_last) {
    BigFloat& t = out[scratch0];
    BigFloat& u = out[scratch1];
    BigFloat& w = out[scratch2];
    BigFloat& v = out[N0];
    FloatProducts(pars, p, cut_product_words(p, b[N3], a[N1])).keep(t, b[N3], a[N1]);

    BigFloat b1 = storage_behind_product(out[N1], a[N1], b[N1]);
    b1.set_BigFloat(p, pars, b[N1]);
    {
        FloatProducts products(
            pars, p,
            std::max({cut_product_words(p, a[N0], b1), cut_product_words(p, a[N1], b1), cut_product_words(p, b1, b1),
                      is_last ? 0 : cut_product_words(p, b[N0], a[N1])}));
        if (is_last)
            products.keep(a[N1]);
        else
            products.keep(u, b[N0], a[N1]);
        products.exchange(out[N1], b1);
        products.by_kept(v, a[N0]);
        products.square(w);
    }
    BigFloat x = storage_behind(v, v.T + v.L);
    {
        FloatProducts products(pars, p, std::max(cut_product_words(p, b[N2], v), t.L));
        products.keep(x, b[N2], v);
        products.add(t, x);
    }
    BigFloat b2(b[N3].buffer, b[N3].capacity);
    b2.set_BigFloat(p, pars, b[N2]);
    {
        FloatProducts products(pars, p, std::max(cut_product_words(p, a[N2], w), cut_product_words(p, b1, w)));
        products.keep(out[N2], a[N2], w);
        products.by_kept(x, b1);
        products.add(out[N2], b2);
    }
    FloatProducts products(pars, p, std::max(cut_product_words(p, a[N3], x), v.L));
    products.keep(out[N3], a[N3], x);
    products.add(out[N3], t);
    if (!is_last) products.add(v, u);
    for (const auto i : {N1, N2, N3}) strip_low_zeros(out[i]);
    if (!is_last) strip_low_zeros(out[N0]);
}

template <>
void leaf<Family>(const BrentMcMillanAB::Series& series, const MultiplyParameters& pars,
                  NumbersOf<Family, ExactNumber>& numbers, std::uint64_t a, std::uint64_t b) {
    series.BSR_E(pars, numbers, a, b);
}

} // namespace zvp::BinarySplitting
