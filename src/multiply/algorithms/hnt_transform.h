#pragma once

#include "multiply/algorithms/word_pair_transform.h"
#include "multiply/hybrid/hybrid_size.h"

namespace zvp {

/// "HNT" as a transform. It folds: a product that is longer than the capacity of C words comes modulo 2^(32 C) - 1.
class HNTTransform final : public WordPairTransform {
public:
    static constexpr const char* id = "HNT";

    /// For products of `bits` by at most tds tasks.
    HNTTransform(std::uint64_t bits, std::uint32_t tds);

    const char* name() const override { return id; }

    using WordPairTransform::forward;
    using WordPairTransform::forward_fmul;
    using WordPairTransform::forward_fsqr;
    using WordPairTransform::inverse_fmul;
    using WordPairTransform::inverse_fsqr;
    void forward(const MultiplyParameters& pars, std::byte* M, std::byte* X, const c32i* A,
                 std::size_t AL) const override;
    void inverse_fsqr(const MultiplyParameters& pars, std::byte* M, std::byte* Xd, std::byte* Xs, c32i* T,
                      std::size_t s, std::size_t e) const override;
    void inverse_fmul(const MultiplyParameters& pars, std::byte* M, std::byte* Xa, const std::byte* Xb, c32i* T,
                      std::size_t s, std::size_t e) const override;
    void forward_fsqr(const MultiplyParameters& pars, std::byte* M, std::byte* X, const c32i* A, std::size_t AL,
                      c32i* T, std::size_t s, std::size_t e) const override;
    void forward_fmul(const MultiplyParameters& pars, std::byte* M, std::byte* Xa, const c32i* A, std::size_t AL,
                      std::byte* Xb, const c32i* B, std::size_t BL, c32i* T, std::size_t s,
                      std::size_t e) const override;
    bool compatible(const Transform& other) const override;
    std::optional<std::uint64_t> left_out(const std::byte* M, std::size_t length, std::size_t s,
                                          std::size_t e) const override;
    std::optional<std::uint64_t> taken(const std::byte* M, std::size_t s, std::size_t e) const override;

private:
    HybridSize size;
};

} // namespace zvp
