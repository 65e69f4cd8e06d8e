#pragma once
// The multiplications of every algorithm that is a transform: such a class adds its own sizes(), params() and
// ensure_tables().

#include "multiply/contract/check_buffers.h"
#include "multiply/contract/multiply_algorithm.h"

namespace zvp {

/// pars.M is laid out as forward form of A | forward form of B | scratch; a square takes one form.
template <class Word>
class TransformAlgorithm : public MultiplyAlgorithm<Word> {
public:
    using MultiplyAlgorithm<Word>::MultiplyAlgorithm;
    using MultiplyAlgorithm<Word>::sqr;
    using MultiplyAlgorithm<Word>::mul;

    void sqr(const MultiplyParameters& pars, Word* T, std::size_t s, std::size_t e, const Word* A,
             std::size_t AL) const override {
        TransformObject object;
        const Transform& transform = this->params(object, 2 * std::uint64_t{AL}, pars.tds);
        check_buffers(transform, pars);
        const MultiplyParameters inner = behind_forms(pars, 1, transform);
        transform.at(inner.M).sqr_r_x(inner, inner.M, T, s, e, pars.M, A, AL);
    }

    void mul(const MultiplyParameters& pars, Word* T, std::size_t s, std::size_t e, const Word* A, std::size_t AL,
             const Word* B, std::size_t BL) const override {
        TransformObject object;
        const Transform& transform = this->params(object, std::uint64_t{AL} + BL, pars.tds);
        check_buffers(transform, pars);
        multiply(transform, pars, T, s, e, A, AL, B, BL);
    }

    void mul_unchecked(const MultiplyParameters& pars, Word* T, std::size_t s, std::size_t e, const Word* A,
                       std::size_t AL, const Word* B, std::size_t BL) const override {
        TransformObject object;
        multiply(this->params(object, std::uint64_t{AL} + BL, pars.tds), pars, T, s, e, A, AL, B, BL);
    }

private:
    static void multiply(const Transform& transform, const MultiplyParameters& pars, Word* T, std::size_t s,
                         std::size_t e, const Word* A, std::size_t AL, const Word* B, std::size_t BL) {
        const MultiplyParameters inner = behind_forms(pars, 2, transform);
        std::byte* const Xb = pars.M + transform.transform_bytes;
        transform.at(inner.M).mul_rr_xx(inner, inner.M, T, s, e, pars.M, A, AL, Xb, B, BL);
    }

    /// Parameters for what runs inside: the scratch begins behind the forms, and nobody reports.
    static MultiplyParameters behind_forms(const MultiplyParameters& pars, std::uint64_t forms,
                                           const Transform& transform) {
        MultiplyParameters inner = pars;
        inner.status = nullptr;
        inner.M += forms * transform.transform_bytes;
        inner.ML -= forms * transform.transform_bytes;
        return inner;
    }
};

} // namespace zvp
