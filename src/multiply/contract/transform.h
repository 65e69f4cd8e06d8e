#pragma once
// A transform object: one length of one multiplication algorithm. Forward forms of operands can be kept and used in
// several products.
//
// The letters of the compound operations: r is an operand given raw, f one given or left as a forward form, x a
// transform area that ends as scratch. M is the scratch of scratch_bytes; every transform area has transform_bytes; all
// are aligned to 64 bytes and disjoint. T takes the words s .. e - 1 of the product (words of the operands' kind), and
// overlaps neither M nor a transform area; s <= e. For s > 0 a carry of up to 2 from below may be missing in its lowest
// word. Objects are read-only once made; tasks may share them. An operand, or an e, beyond the capacity throws
// ConvolutionTooSmallException. Where an algorithm checks its products, a fault of the machine throws
// AlgorithmFailedException or one of its family; T is undefined then.

#include "multiply/contract/multiply_parameters.h"
#include "multiply/words/word_types.h"
#include "parallel/memory/dry_run.h"

#include <new>
#include <optional>
#include <span>
#include <utility>

namespace zvp {

class Transform {
public:
    virtual ~Transform() = default;

    virtual const char* name() const = 0;

    /// What works with the scratch M: this transform, or, in a dry run, one that does nothing.
    const Transform& at(const std::byte* M) const { return is_dry(M) ? dry_transform() : *this; }

    /// X = forward form of A.
    virtual void forward(const MultiplyParameters& pars, std::byte* M, std::byte* X, const c32i* A,
                         std::size_t AL) const = 0;
    virtual void forward(const MultiplyParameters& pars, std::byte* M, std::byte* X, const c64i* A,
                         std::size_t AL) const = 0;

    /// T = words of the square of the forward form Xs. Xd is working memory; Xs survives unless Xd is Xs.
    virtual void inverse_fsqr(const MultiplyParameters& pars, std::byte* M, std::byte* Xd, std::byte* Xs, c32i* T,
                              std::size_t s, std::size_t e) const = 0;
    virtual void inverse_fsqr(const MultiplyParameters& pars, std::byte* M, std::byte* Xd, std::byte* Xs, c64i* T,
                              std::size_t s, std::size_t e) const = 0;

    /// T = words of the product of two forward forms. Xa is destroyed, Xb survives.
    virtual void inverse_fmul(const MultiplyParameters& pars, std::byte* M, std::byte* Xa, const std::byte* Xb, c32i* T,
                              std::size_t s, std::size_t e) const = 0;
    virtual void inverse_fmul(const MultiplyParameters& pars, std::byte* M, std::byte* Xa, const std::byte* Xb, c64i* T,
                              std::size_t s, std::size_t e) const = 0;

    /// Whether forward forms of this object and of the other may be combined: the same class and the same length.
    virtual bool compatible(const Transform& other) const = 0;

    /// forward of A into X, then the square of it; X ends as scratch. Algorithms that gain by it make one of the two.
    virtual void forward_fsqr(const MultiplyParameters& pars, std::byte* M, std::byte* X, const c32i* A, std::size_t AL,
                              c32i* T, std::size_t s, std::size_t e) const {
        forward(pars, M, X, A, AL);
        inverse_fsqr(pars, M, X, X, T, s, e);
    }
    virtual void forward_fsqr(const MultiplyParameters& pars, std::byte* M, std::byte* X, const c64i* A, std::size_t AL,
                              c64i* T, std::size_t s, std::size_t e) const {
        forward(pars, M, X, A, AL);
        inverse_fsqr(pars, M, X, X, T, s, e);
    }

    /// forward of B into Xb, unless B is null and Xb holds a form; forward of A into Xa; their product. Xb ends as a
    /// form, Xa as scratch.
    virtual void forward_fmul(const MultiplyParameters& pars, std::byte* M, std::byte* Xa, const c32i* A,
                              std::size_t AL, std::byte* Xb, const c32i* B, std::size_t BL, c32i* T, std::size_t s,
                              std::size_t e) const {
        if (B) forward(pars, M, Xb, B, BL);
        forward(pars, M, Xa, A, AL);
        inverse_fmul(pars, M, Xa, Xb, T, s, e);
    }
    virtual void forward_fmul(const MultiplyParameters& pars, std::byte* M, std::byte* Xa, const c64i* A,
                              std::size_t AL, std::byte* Xb, const c64i* B, std::size_t BL, c64i* T, std::size_t s,
                              std::size_t e) const {
        if (B) forward(pars, M, Xb, B, BL);
        forward(pars, M, Xa, A, AL);
        inverse_fmul(pars, M, Xa, Xb, T, s, e);
    }

    /// What lies at M after a product of `length` words (c32i) of which some were left out, so that a caller can check it:
    /// all words below the capacity, as the product has folded ("FFT"), or all of it, unless the range ended below the
    /// top of an operand ("BKT"). Empty where an algorithm checks its products.
    virtual std::span<const c32i> product_words(const std::byte* M, std::size_t length) const {
        static_cast<void>(M), static_cast<void>(length);
        return {};
    }

    /// After a product of `length` words (c32i) with this scratch that hasn't folded, and of which the words s .. e - 1 were
    /// taken: the product less W^s times what was taken, modulo 2^61 - 1: the words that were left out, and carries that the
    /// range may miss. Nothing where an algorithm can't tell, which is only one of short products.
    virtual std::optional<std::uint64_t> left_out(const std::byte* M, std::size_t length, std::size_t s,
                                                  std::size_t e) const {
        static_cast<void>(M), static_cast<void>(length), static_cast<void>(s), static_cast<void>(e);
        return std::nullopt;
    }

    /// After a product with this scratch, folded or not, the residue of the e - s words that it wrote, made as they were
    /// written. Nothing where an algorithm has none, which never folds.
    virtual std::optional<std::uint64_t> taken(const std::byte* M, std::size_t s, std::size_t e) const {
        static_cast<void>(M), static_cast<void>(s), static_cast<void>(e);
        return std::nullopt;
    }

    /// forward of A into X, square. X ends as scratch.
    template <class Word>
    void sqr_r_x(const MultiplyParameters& pars, std::byte* M, Word* T, std::size_t s, std::size_t e, std::byte* X,
                 const Word* A, std::size_t AL) const {
        forward_fsqr(pars, M, X, A, AL, T, s, e);
    }

    /// forward of A into Xf, square. Xf ends as A's forward form.
    template <class Word>
    void sqr_rx_xf(const MultiplyParameters& pars, std::byte* M, Word* T, std::size_t s, std::size_t e, std::byte* Xd,
                   std::byte* Xf, const Word* A, std::size_t AL) const {
        forward(pars, M, Xf, A, AL);
        inverse_fsqr(pars, M, Xd, Xf, T, s, e);
    }

    /// forward of A into Xa, product with the forward form Xb, which survives.
    template <class Word>
    void mul_rf_xf(const MultiplyParameters& pars, std::byte* M, Word* T, std::size_t s, std::size_t e, std::byte* Xa,
                   const Word* A, std::size_t AL, const std::byte* Xb) const {
        // Without B, Xb is only read.
        forward_fmul(pars, M, Xa, A, AL, const_cast<std::byte*>(Xb), static_cast<const Word*>(nullptr), 0, T, s, e);
    }

    /// forward of B into Xb, forward of A into Xa, product. Xb ends as B's forward form.
    template <class Word>
    void mul_rr_xf(const MultiplyParameters& pars, std::byte* M, Word* T, std::size_t s, std::size_t e, std::byte* Xa,
                   const Word* A, std::size_t AL, std::byte* Xb, const Word* B, std::size_t BL) const {
        if (BL > 0) return forward_fmul(pars, M, Xa, A, AL, Xb, B, BL, T, s, e);
        forward(pars, M, Xb, B, 0);
        mul_rf_xf(pars, M, T, s, e, Xa, A, AL, Xb);
    }

    /// The same product; both areas are scratch afterwards.
    template <class Word>
    void mul_rr_xx(const MultiplyParameters& pars, std::byte* M, Word* T, std::size_t s, std::size_t e, std::byte* Xa,
                   const Word* A, std::size_t AL, std::byte* Xb, const Word* B, std::size_t BL) const {
        mul_rr_xf(pars, M, T, s, e, Xa, A, AL, Xb, B, BL);
    }

    std::uint64_t capacity_bits = 0;   // product size that fits without wrapping
    std::uint64_t transform_bytes = 0; // one forward form, a multiple of 64
    std::uint64_t scratch_bytes = 0;   // working memory beyond the forward forms, a multiple of 64
    std::uint64_t requested_bits = 0;  // the size asked for

private:
    static const Transform& dry_transform();
};

/// Storage for one transform object of any algorithm, on the stack of whoever plans the product.
class TransformObject {
public:
    TransformObject() = default;
    ~TransformObject() { reset(); }
    TransformObject(const TransformObject&) = delete;
    TransformObject& operator=(const TransformObject&) = delete;

    template <class T, class... Arguments>
    T& emplace(Arguments&&... arguments) {
        static_assert(sizeof(T) <= sizeof bytes && alignof(T) <= alignof(std::max_align_t));
        reset();
        T* made = new (bytes) T(std::forward<Arguments>(arguments)...);
        object = made;
        return *made;
    }

    explicit operator bool() const { return object != nullptr; }
    const Transform& operator*() const { return *object; }
    const Transform* operator->() const { return object; }

private:
    void reset() {
        if (object) object->~Transform();
        object = nullptr;
    }

    alignas(std::max_align_t) std::byte bytes[512];
    Transform* object = nullptr;
};

} // namespace zvp
