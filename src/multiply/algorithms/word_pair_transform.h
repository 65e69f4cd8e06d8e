#pragma once
// Transforms that see nothing but bits: a c64i array is a c32i array of twice the length.

#include "multiply/contract/transform.h"

namespace zvp {

class WordPairTransform : public Transform {
public:
    using Transform::forward;
    using Transform::forward_fmul;
    using Transform::forward_fsqr;
    using Transform::inverse_fmul;
    using Transform::inverse_fsqr;

    void forward(const MultiplyParameters& pars, std::byte* M, std::byte* X, const c64i* A,
                 std::size_t AL) const final {
        forward(pars, M, X, reinterpret_cast<const c32i*>(A), 2 * AL);
    }
    void inverse_fsqr(const MultiplyParameters& pars, std::byte* M, std::byte* Xd, std::byte* Xs, c64i* T,
                      std::size_t s, std::size_t e) const final {
        inverse_fsqr(pars, M, Xd, Xs, reinterpret_cast<c32i*>(T), 2 * s, 2 * e);
    }
    void inverse_fmul(const MultiplyParameters& pars, std::byte* M, std::byte* Xa, const std::byte* Xb, c64i* T,
                      std::size_t s, std::size_t e) const final {
        inverse_fmul(pars, M, Xa, Xb, reinterpret_cast<c32i*>(T), 2 * s, 2 * e);
    }

    void forward_fsqr(const MultiplyParameters& pars, std::byte* M, std::byte* X, const c64i* A, std::size_t AL,
                      c64i* T, std::size_t s, std::size_t e) const final {
        forward_fsqr(pars, M, X, reinterpret_cast<const c32i*>(A), 2 * AL, reinterpret_cast<c32i*>(T), 2 * s, 2 * e);
    }
    void forward_fmul(const MultiplyParameters& pars, std::byte* M, std::byte* Xa, const c64i* A, std::size_t AL,
                      std::byte* Xb, const c64i* B, std::size_t BL, c64i* T, std::size_t s, std::size_t e) const final {
        forward_fmul(pars, M, Xa, reinterpret_cast<const c32i*>(A), 2 * AL, Xb, reinterpret_cast<const c32i*>(B),
                     2 * BL, reinterpret_cast<c32i*>(T), 2 * s, 2 * e);
    }

protected:
    /// Throws ConvolutionTooSmallException when `words` don't fit the capacity.
    void check_capacity(std::uint64_t words) const;
};

} // namespace zvp
