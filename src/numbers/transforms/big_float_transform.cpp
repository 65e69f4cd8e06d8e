#include "numbers/transforms/big_float_transform.h"

#include "app/failure/exceptions.h"
#include "digits/hash/hash_field.h"
#include "multiply/words/parallel_words.h"
#include "numbers/transforms/product_repair.h"
#include "numbers/transforms/product_window.h"
#include "numbers/transforms/transform_check.h"

#include <algorithm>
#include <optional>

namespace zvp {
namespace {

constexpr auto guards = static_cast<std::int64_t>(BigFloat::extra_precision);

constexpr unsigned bits = BigFloat::w;

/// Where an operand's words lie.
struct Extent {
    std::int64_t exp;
    std::size_t L;

    std::int64_t top() const { return exp + static_cast<std::int64_t>(L); }
};

/// The residue of an operand's words, if it is watched.
struct Watched {
    std::uint64_t hash = 0;
    bool is_watched = false;
};

/// An operand cut to the top p + 2 words: a copy of what is needed of it, for the target may be the same number.
struct Operand : Extent {
    const wtype* T;
    bool sign;
    Watched residue;

    Operand(const char* function, const Transform& tr, const BigFloat& A, std::size_t p, const ParallelContext& ctx)
        : sign(A.sign) {
        L = std::min(A.L, p + BigFloat::extra_precision);
        if (A.watched) residue = {A.hash_of_top(L, ctx), true};
        T = A.T + (A.L - L);
        exp = A.exp + static_cast<std::int64_t>(A.L - L);
        check_operand(function, tr, L * std::uint64_t{bits});
    }
};

void set(BigFloat& T, std::size_t L, std::int64_t exp, bool sign) {
    T.T = T.buffer;
    T.L = L;
    T.exp = exp;
    T.sign = sign;
}

void set_zero(BigFloat& T) {
    set(T, 0, 0, false);
    T.watched = false;
}

/// The positions wanted of a product, guard words not counted.
struct Range {
    std::int64_t ie;
    std::int64_t te;
    bool empty;
};

Range range_of(std::int64_t ie, std::int64_t te) { return {ie, te, te <= ie}; }

/// At precision 0 this is nothing but guard words, which are made.
Range range_at(std::size_t p, Extent A, Extent B) {
    const std::int64_t te = A.top() + B.top();
    return {std::max(te - static_cast<std::int64_t>(p), A.exp + B.exp), te, false};
}

/// A product whose words go to the start of a target's storage.
class Product {
public:
    /// The range of A * B with its guard words, or nothing of it; throws if it can't be made.
    Product(const char* function, const Transform& tr, BigFloat& T_, Range range, Extent A, Extent B) : T(T_) {
        if (A.L == 0 || B.L == 0 || range.empty) return;
        const auto& [ie, te, empty] = range;
        const std::int64_t base = A.exp + B.exp;
        const std::size_t P = A.L + B.L;
        window = ProductWindow::params(tr, ie - guards, te, base, P);
        const std::uint64_t C = tr.capacity_bits / bits;
        length = P;
        folds = P > C;
        if (P > C && te > base && ie < base + static_cast<std::int64_t>(P - C))
            throw InvalidTransformException(function, "Invalid Transform Parameters");
        if (T.capacity < window.n()) throw BufferTooSmallException(function, T.capacity, window.n());
    }

    bool empty() const { return window.n() == 0; }
    wtype* words() const { return T.buffer; }
    std::size_t s() const { return window.s; }
    std::size_t e() const { return window.e; }

    /// T holds the words, and M what the transform has left there.
    void finish(bool sign, const ParallelContext& ctx, const Transform& tr, const std::byte* M, const Watched& a,
                const Watched& b) {
        T.watched = false;
        if (folds && arithmetic_is_watched) set_hash(tr.at(M).taken(M, window.s, window.e));
        if (!folds && arithmetic_is_watched && a.is_watched && b.is_watched)
            set_hash(hash_of_words(tr, M, mul_mod(a.hash, b.hash), ctx));
        const std::size_t L = bp_scan_top(wtype{0}, T.buffer, window.n(), ctx);
        if (L > 0)
            set(T, L, window.exp, sign);
        else
            set(T, 0, 0, true);
    }

private:
    void set_hash(std::optional<std::uint64_t> hash) {
        T.watched = hash.has_value();
        T.hash = hash.value_or(0);
    }

    std::uint64_t hash_of_words(const Transform& tr, const std::byte* M, std::uint64_t product,
                                const ParallelContext& ctx) const {
        const std::size_t s = window.s, e = window.e;
        if (s == 0 && e == length) return product;
        if (const std::optional<std::uint64_t> left_out = tr.at(M).left_out(M, length, s, e))
            return shift_words(subtract_mod(product, *left_out), -static_cast<std::int64_t>(s));
        return bp_hash(0, T.buffer, e - s, ctx);
    }

    BigFloat& T;
    ProductWindow window;
    std::size_t length = 0;
    bool folds = false;
};

/// What is kept of an operand with its form.
BigFloatTransformR describe(const Transform& tr, const Operand& a, std::byte* X) {
    BigFloatTransformR form;
    form.params = &tr;
    if (a.L == 0) return form;
    form.X = X;
    form.exp = a.exp;
    form.L = a.L;
    form.sign = a.sign;
    form.top = a.top();
    form.hash = a.residue.hash;
    form.watched = a.residue.is_watched;
    return form;
}

BigFloatTransformR make_form(const MultiplyParameters& pars, const Transform& tr, std::byte* M, const Operand& a,
                             std::byte* X) {
    if (a.L > 0) tr.at(M).forward(pars, M, X, a.T, a.L);
    return describe(tr, a, X);
}

} // namespace

void BigFloatTransformR::forward(const MultiplyParameters& pars, const Transform& tr, std::byte* M, const BigFloat& A,
                                 std::size_t p, std::byte* X_area) {
    *this = make_form(pars, tr, M, Operand("BigFloatTransformR::forward()", tr, A, p, pars), X_area);
}

void BigFloatTransformR::inverse_fmul(const MultiplyParameters& pars, std::byte* M, BigFloat& T, std::size_t p,
                                      const BigFloatTransformR& B) {
    static constexpr const char* function = "BigFloatTransformR::inverse_fmul()";
    if (L == 0 || B.L == 0) return set_zero(T);
    check_match(function, *params, *B.params);
    check_form(function, X);
    check_form(function, B.X);
    const Extent a{exp, L}, b{B.exp, B.L};
    Product product(function, *params, T, range_at(p, a, b), a, b);
    if (product.empty()) return set_zero(T);

    const bool product_sign = sign == B.sign;
    if (X == B.X)
        params->at(M).inverse_fsqr(pars, M, X, X, product.words(), product.s(), product.e());
    else
        params->at(M).inverse_fmul(pars, M, X, B.X, product.words(), product.s(), product.e());
    X = nullptr;
    product.finish(product_sign, pars, *params, M, {hash, watched}, {B.hash, B.watched});
}

void BigFloatTransformR::inverse_fsqr(const MultiplyParameters& pars, std::byte* M, BigFloat& T, std::int64_t ie,
                                      std::int64_t te, std::byte* Xd) {
    static constexpr const char* function = "BigFloatTransformR::inverse_fsqr()";
    if (L == 0) return set_zero(T);
    check_form(function, X);
    Product product(function, *params, T, range_of(ie, te), {exp, L}, {exp, L});
    if (product.empty()) return set_zero(T);
    params->at(M).inverse_fsqr(pars, M, Xd, X, product.words(), product.s(), product.e());
    if (Xd == X) X = nullptr;
    product.finish(true, pars, *params, M, {hash, watched}, {hash, watched});
}

void BigFloatTransformR::sqr_r_x(const MultiplyParameters& pars, const Transform& tr, std::byte* M, BigFloat& T,
                                 std::size_t p, std::byte* X, const BigFloat& A) {
    static constexpr const char* function = "BigFloatTransformR::sqr_r_x()";
    const Operand a(function, tr, A, p, pars);
    Product product(function, tr, T, range_at(p, a, a), a, a);
    if (product.empty()) return set_zero(T);
    multiply_repaired(function, T, A, A, pars,
                      [&] { tr.at(M).sqr_r_x(pars, M, product.words(), product.s(), product.e(), X, a.T, a.L); });
    product.finish(true, pars, tr, M, a.residue, a.residue);
}

void BigFloatTransformR::sqr_rx_xf(const MultiplyParameters& pars, const Transform& tr, std::byte* M, BigFloat& T,
                                   std::int64_t ie, std::int64_t te, std::byte* Xd, const BigFloat& A, std::size_t p,
                                   std::byte* Xf, BigFloatTransformR& out) {
    static constexpr const char* function = "BigFloatTransformR::sqr_rx_xf()";
    const Operand a(function, tr, A, p, pars);
    Product product(function, tr, T, range_of(ie, te), a, a);
    if (product.empty()) {
        out = make_form(pars, tr, M, a, Xf);
        return set_zero(T);
    }
    multiply_repaired(function, T, A, A, pars, [&] {
        tr.at(M).sqr_rx_xf(pars, M, product.words(), product.s(), product.e(), Xd, Xf, a.T, a.L);
    });
    out = describe(tr, a, Xf);
    product.finish(true, pars, tr, M, a.residue, a.residue);
}

void BigFloatTransformR::mul_rf_xf(const MultiplyParameters& pars, const Transform& tr, std::byte* M, BigFloat& T,
                                   std::int64_t ie, std::int64_t te, std::byte* Xa, const BigFloat& A, std::size_t p,
                                   const BigFloatTransformR& B) {
    static constexpr const char* function = "BigFloatTransformR::mul_rf_xf()";
    const Operand a(function, tr, A, p, pars);
    if (B.L > 0) {
        check_match(function, tr, *B.params);
        check_form(function, B.X);
    }
    Product product(function, tr, T, range_of(ie, te), a, {B.exp, B.L});
    if (product.empty()) return set_zero(T);
    tr.at(M).mul_rf_xf(pars, M, product.words(), product.s(), product.e(), Xa, a.T, a.L, B.X);
    product.finish(a.sign == B.sign, pars, tr, M, a.residue, {B.hash, B.watched});
}

void BigFloatTransformR::mul_rr_xf(const MultiplyParameters& pars, const Transform& tr, std::byte* M, BigFloat& T,
                                   std::int64_t ie, std::int64_t te, std::byte* Xa, const BigFloat& A, std::size_t pA,
                                   std::byte* Xb, const BigFloat& B, std::size_t pB, BigFloatTransformR& out) {
    static constexpr const char* function = "BigFloatTransformR::mul_rr_xf()";
    const Operand a(function, tr, A, pA, pars);
    const Operand b(function, tr, B, pB, pars);
    Product product(function, tr, T, range_of(ie, te), a, b);
    if (product.empty()) {
        out = make_form(pars, tr, M, b, Xb);
        return set_zero(T);
    }
    multiply_repaired(function, T, A, B, pars, [&] {
        tr.at(M).mul_rr_xf(pars, M, product.words(), product.s(), product.e(), Xa, a.T, a.L, Xb, b.T, b.L);
    });
    out = describe(tr, b, Xb);
    product.finish(a.sign == b.sign, pars, tr, M, a.residue, b.residue);
}

void BigFloatTransformR::mul_rr_xx(const MultiplyParameters& pars, const Transform& tr, std::byte* M, BigFloat& T,
                                   std::int64_t ie, std::int64_t te, std::byte* Xa, const BigFloat& A, std::size_t pA,
                                   std::byte* Xb, const BigFloat& B, std::size_t pB) {
    static constexpr const char* function = "BigFloatTransformR::mul_rr_xx()";
    const Operand a(function, tr, A, pA, pars);
    const Operand b(function, tr, B, pB, pars);
    Product product(function, tr, T, range_of(ie, te), a, b);
    if (product.empty()) return set_zero(T);
    multiply_repaired(function, T, A, B, pars, [&] {
        tr.at(M).mul_rr_xx(pars, M, product.words(), product.s(), product.e(), Xa, a.T, a.L, Xb, b.T, b.L);
    });
    product.finish(a.sign == b.sign, pars, tr, M, a.residue, b.residue);
}

} // namespace zvp
