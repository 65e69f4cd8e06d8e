#include "numbers/transforms/exact_float_transform.h"

#include "app/failure/exceptions.h"
#include "digits/hash/hash_field.h"
#include "multiply/words/parallel_words.h"
#include "numbers/transforms/product_repair.h"
#include "numbers/transforms/transform_check.h"

#include <algorithm>
#include <limits>

namespace zvp {
namespace {

constexpr std::int64_t whole = std::numeric_limits<std::int64_t>::min();

/// An operand, in either shape; copied, for the target may be the same number.
template <class Word>
struct Operand {
    const Word* T = nullptr; // null for a form
    std::size_t L;
    std::int64_t exp;
    bool sign;
    std::uint64_t hash;

    Operand(const char* function, const Transform& tr, const ExactFloat<Word>& A)
        : T(A.T), L(A.L), exp(A.exp), sign(A.sign), hash(A.hash) {
        check_operand(function, tr, L * std::uint64_t{word_bits<Word>});
    }

    explicit Operand(const ExactFloatTransformR<Word>& A) : L(A.L), exp(A.exp), sign(A.sign), hash(A.hash) {}
};

/// The words of A * B from position low on, which go to the start of a target's storage.
template <class Word>
class Product {
public:
    /// Throws if it can't be made. tr isn't looked at where an operand is zero.
    Product(const char* function, const Transform* tr, ExactFloat<Word>& T_, std::int64_t low, const Operand<Word>& A,
            const Operand<Word>& B)
        : T(T_), hash(mul_mod(A.hash, B.hash)), sign(A.sign == B.sign) {
        if (A.L == 0 || B.L == 0) return;
        const std::size_t P = A.L + B.L;
        const std::uint64_t length = P * std::uint64_t{word_bits<Word>};
        if (length > tr->capacity_bits)
            throw ConvolutionTooSmallException(function, "Convolution length is too small.", tr->capacity_bits, length);
        const std::int64_t base = A.exp + B.exp;
        exp = std::max(low, base);
        if (low > base) hash = 0;
        if (exp >= base + static_cast<std::int64_t>(P)) return;
        s = static_cast<std::size_t>(exp - base);
        e = P;
        if (T.capacity < e - s) throw BufferTooSmallException(function, T.capacity, e - s);
    }

    bool empty() const { return e == s; }
    Word* words() const { return T.buffer; }

    /// T holds the words; of a whole product one at most is zero at the top.
    void finish(const ParallelContext& ctx) {
        const std::size_t L =
            s == 0 && !is_dry(T.buffer) ? e - (T.buffer[e - 1] == 0) : bp_scan_top(Word{0}, T.buffer, e - s, ctx);
        set(L, L > 0 ? exp : 0, L > 0 ? sign : true);
    }

    void set_zero() { set(0, 0, false); }

    std::size_t s = 0; // words of the product
    std::size_t e = 0;

private:
    void set(std::size_t L, std::int64_t lowest, bool product_sign) {
        T.T = T.buffer;
        T.L = L;
        T.exp = lowest;
        T.sign = product_sign;
        T.hash = hash;
    }

    ExactFloat<Word>& T;
    std::int64_t exp = 0;
    std::uint64_t hash;
    bool sign;
};

/// What is kept of an operand with its form.
template <class Word>
ExactFloatTransformR<Word> describe(const Transform& tr, const Operand<Word>& a, std::byte* X) {
    ExactFloatTransformR<Word> form;
    form.params = &tr;
    form.hash = a.hash;
    if (a.L == 0) return form;
    form.X = X;
    form.exp = a.exp;
    form.L = a.L;
    form.sign = a.sign;
    form.top = a.exp + static_cast<std::int64_t>(a.L);
    return form;
}

template <class Word>
ExactFloatTransformR<Word> make_form(const MultiplyParameters& pars, const Transform& tr, std::byte* M,
                                     const Operand<Word>& a, std::byte* X) {
    if (a.L > 0) tr.at(M).forward(pars, M, X, a.T, a.L);
    return describe(tr, a, X);
}

template <class Word>
void multiply_rf(const char* function, const MultiplyParameters& pars, const Transform& tr, std::byte* M,
                 ExactFloat<Word>& T, std::int64_t low, std::byte* Xa, const ExactFloat<Word>& A,
                 const ExactFloatTransformR<Word>& B) {
    const Operand<Word> a(function, tr, A);
    if (B.L > 0) {
        check_match(function, tr, *B.params);
        check_form(function, B.X);
    }
    Product<Word> product(function, &tr, T, low, a, Operand<Word>(B));
    if (product.empty()) return product.set_zero();
    tr.at(M).mul_rf_xf(pars, M, product.words(), product.s, product.e, Xa, a.T, a.L, B.X);
    product.finish(pars);
}

template <class Word>
void multiply_rr_keeping(const char* function, const MultiplyParameters& pars, const Transform& tr, std::byte* M,
                         ExactFloat<Word>& T, std::int64_t low, std::byte* Xa, const ExactFloat<Word>& A, std::byte* Xb,
                         const ExactFloat<Word>& B, ExactFloatTransformR<Word>& out) {
    const Operand<Word> a(function, tr, A);
    const Operand<Word> b(function, tr, B);
    Product<Word> product(function, &tr, T, low, a, b);
    if (product.empty()) {
        out = make_form(pars, tr, M, b, Xb);
        return product.set_zero();
    }
    multiply_repaired(function, T, A, B, pars, [&] {
        tr.at(M).mul_rr_xf(pars, M, product.words(), product.s, product.e, Xa, a.T, a.L, Xb, b.T, b.L);
    });
    out = describe(tr, b, Xb);
    product.finish(pars);
}

template <class Word>
void multiply_rr(const char* function, const MultiplyParameters& pars, const Transform& tr, std::byte* M,
                 ExactFloat<Word>& T, std::int64_t low, std::byte* Xa, const ExactFloat<Word>& A, std::byte* Xb,
                 const ExactFloat<Word>& B) {
    const Operand<Word> a(function, tr, A);
    const Operand<Word> b(function, tr, B);
    Product<Word> product(function, &tr, T, low, a, b);
    if (product.empty()) return product.set_zero();
    multiply_repaired(function, T, A, B, pars, [&] {
        tr.at(M).mul_rr_xx(pars, M, product.words(), product.s, product.e, Xa, a.T, a.L, Xb, b.T, b.L);
    });
    product.finish(pars);
}

} // namespace

template <class Word>
void ExactFloatTransformR<Word>::forward(const MultiplyParameters& pars, const Transform& tr, std::byte* M,
                                         const Number& A, std::byte* X_area) {
    *this = make_form(pars, tr, M, Operand<Word>("ExactFloatTransformR::forward()", tr, A), X_area);
}

template <class Word>
void ExactFloatTransformR<Word>::inverse_fmul(const MultiplyParameters& pars, std::byte* M, Number& T,
                                              const ExactFloatTransformR& B) {
    static constexpr const char* function = "ExactFloatTransformR::inverse_fmul()";
    if (L > 0 && B.L > 0) {
        check_match(function, *params, *B.params);
        check_form(function, X);
        check_form(function, B.X);
    }
    Product<Word> product(function, params, T, whole, Operand<Word>(*this), Operand<Word>(B));
    if (product.empty()) return product.set_zero();
    if (X == B.X)
        params->at(M).inverse_fsqr(pars, M, X, X, product.words(), product.s, product.e);
    else
        params->at(M).inverse_fmul(pars, M, X, B.X, product.words(), product.s, product.e);
    X = nullptr;
    product.finish(pars);
}

template <class Word>
void ExactFloatTransformR<Word>::inverse_fsqr(const MultiplyParameters& pars, std::byte* M, Number& T, std::byte* Xd) {
    static constexpr const char* function = "ExactFloatTransformR::inverse_fsqr()";
    if (L > 0) check_form(function, X);
    const Operand<Word> a(*this);
    Product<Word> product(function, params, T, whole, a, a);
    if (product.empty()) return product.set_zero();
    params->at(M).inverse_fsqr(pars, M, Xd, X, product.words(), product.s, product.e);
    if (Xd == X) X = nullptr;
    product.finish(pars);
}

template <class Word>
void ExactFloatTransformR<Word>::sqr_r_x(const MultiplyParameters& pars, const Transform& tr, std::byte* M, Number& T,
                                         std::byte* X_area, const Number& A) {
    static constexpr const char* function = "ExactFloatTransformR::sqr_r_x()";
    const Operand<Word> a(function, tr, A);
    Product<Word> product(function, &tr, T, whole, a, a);
    if (product.empty()) return product.set_zero();
    multiply_repaired(function, T, A, A, pars,
                      [&] { tr.at(M).sqr_r_x(pars, M, product.words(), product.s, product.e, X_area, a.T, a.L); });
    product.finish(pars);
}

template <class Word>
void ExactFloatTransformR<Word>::sqr_rx_xf(const MultiplyParameters& pars, const Transform& tr, std::byte* M, Number& T,
                                           std::byte* Xd, const Number& A, std::byte* Xf, ExactFloatTransformR& out) {
    static constexpr const char* function = "ExactFloatTransformR::sqr_rx_xf()";
    const Operand<Word> a(function, tr, A);
    Product<Word> product(function, &tr, T, whole, a, a);
    if (product.empty()) {
        out = make_form(pars, tr, M, a, Xf);
        return product.set_zero();
    }
    multiply_repaired(function, T, A, A, pars,
                      [&] { tr.at(M).sqr_rx_xf(pars, M, product.words(), product.s, product.e, Xd, Xf, a.T, a.L); });
    out = describe(tr, a, Xf);
    product.finish(pars);
}

template <class Word>
void ExactFloatTransformR<Word>::mul_rf_xf(const MultiplyParameters& pars, const Transform& tr, std::byte* M, Number& T,
                                           std::byte* Xa, const Number& A, const ExactFloatTransformR& B) {
    multiply_rf("ExactFloatTransformR::mul_rf_xf()", pars, tr, M, T, whole, Xa, A, B);
}

template <class Word>
void ExactFloatTransformR<Word>::mul_rf_xf(const MultiplyParameters& pars, const Transform& tr, std::byte* M, Number& T,
                                           std::int64_t low, std::byte* Xa, const Number& A,
                                           const ExactFloatTransformR& B) {
    multiply_rf("ExactFloatTransformR::mul_rf_xf(exp)", pars, tr, M, T, low, Xa, A, B);
}

template <class Word>
void ExactFloatTransformR<Word>::mul_rr_xf(const MultiplyParameters& pars, const Transform& tr, std::byte* M, Number& T,
                                           std::byte* Xa, const Number& A, std::byte* Xb, const Number& B,
                                           ExactFloatTransformR& out) {
    multiply_rr_keeping("ExactFloatTransformR::mul_rr_xf()", pars, tr, M, T, whole, Xa, A, Xb, B, out);
}

template <class Word>
void ExactFloatTransformR<Word>::mul_rr_xf(const MultiplyParameters& pars, const Transform& tr, std::byte* M, Number& T,
                                           std::int64_t low, std::byte* Xa, const Number& A, std::byte* Xb,
                                           const Number& B, ExactFloatTransformR& out) {
    multiply_rr_keeping("ExactFloatTransformR::mul_rr_xf(exp)", pars, tr, M, T, low, Xa, A, Xb, B, out);
}

template <class Word>
void ExactFloatTransformR<Word>::mul_rr_xx(const MultiplyParameters& pars, const Transform& tr, std::byte* M, Number& T,
                                           std::byte* Xa, const Number& A, std::byte* Xb, const Number& B) {
    multiply_rr("ExactFloatTransformR::mul_rr_xx()", pars, tr, M, T, whole, Xa, A, Xb, B);
}

template <class Word>
void ExactFloatTransformR<Word>::mul_rr_xx(const MultiplyParameters& pars, const Transform& tr, std::byte* M, Number& T,
                                           std::int64_t low, std::byte* Xa, const Number& A, std::byte* Xb,
                                           const Number& B) {
    multiply_rr("ExactFloatTransformR::mul_rr_xx(exp)", pars, tr, M, T, low, Xa, A, Xb, B);
}

template class ExactFloatTransformR<c32i>;
template class ExactFloatTransformR<c64i>;

} // namespace zvp
