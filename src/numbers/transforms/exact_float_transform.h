#pragma once
// A forward transform of an exact number, kept for several products. The letters of the operations and the arguments
// pars, tr, M and X... are those of big_float_transform.h; T may be an operand here, too.
//
// Products are whole and exact, and carry the product of the operands' residues: no word of a product is read for its
// hash, so that a product that went wrong shows when somebody compares the hash with residue(). The forms with a position
// `low` cut the product: T gets the words from low on. Their lowest word may be short by one or two units for carries
// from below (product_window.h). Where something was cut, hash is 0 until the caller sets it to residue().
//
// For an operand that is zero, and where `low` is above the product, T is zero with sign 0, and no transform is run but
// those that are to be kept; a product that is cut to zero words has sign 1.
//
// Errors, each with the name of the operation, which ends in "(exp)" for those that cut; T is unchanged:
//   TransformTooSmallException    an operand has more words than tr
//   ConvolutionTooSmallException  the product, before cutting, is longer than tr.capacity_bits
//   InvalidParametersException    two transforms of different lengths, which are printed; a consumed one
//   BufferTooSmallException       T's capacity is less than A.L + B.L words, or than those from low on
//
// A fault of the machine that the transform finds throws AlgorithmFailedException or one of its family; T's words are
// undefined then.

#include "multiply/contract/transform.h"
#include "numbers/exact_float.h"

namespace zvp {

/// A view of a forward form, like its number. Several tasks may multiply by one form at once, as the operand B, each with
/// its own M and Xa.
template <class Word>
class ExactFloatTransformR {
public:
    using Number = ExactFloat<Word>;

    const Transform* params = nullptr; // the transform object; not owned
    std::byte* X = nullptr;            // the forward form; null for zero and once consumed
    std::int64_t exp = 0;
    std::size_t L = 0; // 0: the operand is zero
    bool sign = false;
    std::int64_t top = 0;   // exp + L
    std::uint64_t hash = 0; // also of a zero

    /// this = the forward form of A, at X. A zero leaves X alone.
    void forward(const MultiplyParameters& pars, const Transform& tr, std::byte* M, const Number& A, std::byte* X_area);

    /// T = this * B. Consumes this form unless T is zero. B may be this one.
    void inverse_fmul(const MultiplyParameters& pars, std::byte* M, Number& T, const ExactFloatTransformR& B);

    /// T = the square of this. This form survives unless Xd is its own area.
    void inverse_fsqr(const MultiplyParameters& pars, std::byte* M, Number& T, std::byte* Xd);

    /// T = A^2.
    static void sqr_r_x(const MultiplyParameters& pars, const Transform& tr, std::byte* M, Number& T, std::byte* X_area,
                        const Number& A);

    /// T = A^2; out = the forward form of A, in Xf.
    static void sqr_rx_xf(const MultiplyParameters& pars, const Transform& tr, std::byte* M, Number& T, std::byte* Xd,
                          const Number& A, std::byte* Xf, ExactFloatTransformR& out);

    /// T = A * B. B's form survives.
    static void mul_rf_xf(const MultiplyParameters& pars, const Transform& tr, std::byte* M, Number& T, std::byte* Xa,
                          const Number& A, const ExactFloatTransformR& B);
    static void mul_rf_xf(const MultiplyParameters& pars, const Transform& tr, std::byte* M, Number& T,
                          std::int64_t low, std::byte* Xa, const Number& A, const ExactFloatTransformR& B);

    /// T = A * B; out = the forward form of B, in Xb, also where T is zero.
    static void mul_rr_xf(const MultiplyParameters& pars, const Transform& tr, std::byte* M, Number& T, std::byte* Xa,
                          const Number& A, std::byte* Xb, const Number& B, ExactFloatTransformR& out);
    static void mul_rr_xf(const MultiplyParameters& pars, const Transform& tr, std::byte* M, Number& T,
                          std::int64_t low, std::byte* Xa, const Number& A, std::byte* Xb, const Number& B,
                          ExactFloatTransformR& out);

    /// T = A * B.
    static void mul_rr_xx(const MultiplyParameters& pars, const Transform& tr, std::byte* M, Number& T, std::byte* Xa,
                          const Number& A, std::byte* Xb, const Number& B);
    static void mul_rr_xx(const MultiplyParameters& pars, const Transform& tr, std::byte* M, Number& T,
                          std::int64_t low, std::byte* Xa, const Number& A, std::byte* Xb, const Number& B);
};

} // namespace zvp
