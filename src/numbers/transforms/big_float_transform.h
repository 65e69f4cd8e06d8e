#pragma once
// A forward transform of a number, kept for several products.
//
// The letters of the compound operations: r is an operand given raw, f one given or left as a forward form, x a
// transform area that ends as scratch. Arguments that all of them share:
//
//   pars      context and tables; its M and ML aren't looked at
//   tr        the transform object, sized for the words that must not fold, not for the whole product (product_window.h)
//   M         scratch of tr.scratch_bytes
//   X...      transform areas of tr.transform_bytes each. All these are aligned to 64 bytes and disjoint
//   T         the target. It may be an operand; its storage overlaps neither M nor an area
//   ie, te    the positions wanted: from ie up to, not including, te
//   p         the precision in words: operands are cut to their top p + 2
//
// What T gets is the window [ie - 2, te) of the product of the cut operands, two guard words included, as far as the
// product has such words. A product that is taken whole is exact. A window that is cut below may be short by one or two
// units of its lowest word, and where the product folds, a unit of the lowest word that the fold leaves alone, a word at
// or below ie, may be too much or missing (product_window.h). Besides, an operand that was cut makes the product short by
// less than one unit of that operand's lowest word times W^(top of the other).
//
// The result's top zero words go. If nothing remains, T is zero with sign 1; for an operand that is zero, for te <= ie
// and for a range that holds no word of the product, T is zero with sign 0, and no transform is run but those that are
// to be kept.
//
// A product of watched operands that doesn't fold is watched: its residue is that of the operands' product less the words that
// were left out, which the transform still has at hand. So nothing of the way, form or product, goes unwatched. One that folds
// is watched from when it is written; who folds knows how to prove it (functions/step_watch.h).
//
// Errors, each with the name of the operation; T is unchanged:
//   TransformTooSmallException    a cut operand has more words than tr
//   ConvolutionTooSmallException  te is above the words that the fold leaves alone ("BigFloatTransformR::params()")
//   InvalidTransformException     ie is below them
//   InvalidParametersException    two transforms of different lengths, which are printed; a consumed one
//   BufferTooSmallException       T's capacity is less than the words of the window, the product's top word counted
//                                 even if it is zero
//
// A fault of the machine that the transform finds throws AlgorithmFailedException or one of its family; T's words are
// undefined then.

#include "multiply/contract/transform.h"
#include "numbers/big_float.h"

namespace zvp {

/// A view of a forward form, like its number: copying it copies the view. Several tasks may multiply by one form at
/// once, as the operand B, each with its own M and Xa.
class BigFloatTransformR {
public:
    const Transform* params = nullptr; // the transform object; not owned
    std::byte* X = nullptr;            // the forward form; null for zero and once consumed
    std::int64_t exp = 0;              // of the operand after cutting, as are the next two
    std::size_t L = 0;                 // 0: the operand is zero
    bool sign = false;
    std::int64_t top = 0;   // exp + L
    std::uint64_t hash = 0; // that the operand's words must have, if it is watched, modulo 2^61 - 1
    bool watched = false;

    /// this = the forward form of A, at X. A zero leaves X alone.
    void forward(const MultiplyParameters& pars, const Transform& tr, std::byte* M, const BigFloat& A, std::size_t p,
                 std::byte* X_area);

    /// T = this * B at precision p: the window from max(top - p, exp) - 2 on, with top and exp the sums of both. Consumes
    /// this form, unless T is zero for lack of words. B may be this one.
    void inverse_fmul(const MultiplyParameters& pars, std::byte* M, BigFloat& T, std::size_t p,
                      const BigFloatTransformR& B);

    /// T = the square of this. This form survives unless Xd is its own area.
    void inverse_fsqr(const MultiplyParameters& pars, std::byte* M, BigFloat& T, std::int64_t ie, std::int64_t te,
                      std::byte* Xd);

    /// T = A^2 at precision p: the window from max(2 top - p, 2 exp) - 2 on, with A's top and exp after cutting.
    static void sqr_r_x(const MultiplyParameters& pars, const Transform& tr, std::byte* M, BigFloat& T, std::size_t p,
                        std::byte* X, const BigFloat& A);

    /// T = A^2; out = the forward form of A, in Xf.
    static void sqr_rx_xf(const MultiplyParameters& pars, const Transform& tr, std::byte* M, BigFloat& T,
                          std::int64_t ie, std::int64_t te, std::byte* Xd, const BigFloat& A, std::size_t p,
                          std::byte* Xf, BigFloatTransformR& out);

    /// T = A * B. B's form survives.
    static void mul_rf_xf(const MultiplyParameters& pars, const Transform& tr, std::byte* M, BigFloat& T,
                          std::int64_t ie, std::int64_t te, std::byte* Xa, const BigFloat& A, std::size_t p,
                          const BigFloatTransformR& B);

    /// T = A * B; out = the forward form of B, in Xb, also where T is zero.
    static void mul_rr_xf(const MultiplyParameters& pars, const Transform& tr, std::byte* M, BigFloat& T,
                          std::int64_t ie, std::int64_t te, std::byte* Xa, const BigFloat& A, std::size_t pA,
                          std::byte* Xb, const BigFloat& B, std::size_t pB, BigFloatTransformR& out);

    /// T = A * B.
    static void mul_rr_xx(const MultiplyParameters& pars, const Transform& tr, std::byte* M, BigFloat& T,
                          std::int64_t ie, std::int64_t te, std::byte* Xa, const BigFloat& A, std::size_t pA,
                          std::byte* Xb, const BigFloat& B, std::size_t pB);
};

} // namespace zvp
