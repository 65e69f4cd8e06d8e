#pragma once

#include "multiply/algorithms/word_pair_transform.h"
#include "multiply/fft/fft_length.h"

namespace zvp {

/// "FFT" as a transform. It folds: a product that is longer than the capacity of N bits comes modulo 2^N + 1.
class FFTTransform final : public WordPairTransform {
public:
    static constexpr const char* id = "FFT";

    explicit FFTTransform(std::uint64_t bits);

    const char* name() const override { return id; }

    using WordPairTransform::forward;
    using WordPairTransform::inverse_fmul;
    using WordPairTransform::inverse_fsqr;
    void forward(const MultiplyParameters& pars, std::byte* M, std::byte* X, const c32i* A,
                 std::size_t AL) const override;
    void inverse_fsqr(const MultiplyParameters& pars, std::byte* M, std::byte* Xd, std::byte* Xs, c32i* T,
                      std::size_t s, std::size_t e) const override;
    void inverse_fmul(const MultiplyParameters& pars, std::byte* M, std::byte* Xa, const std::byte* Xb, c32i* T,
                      std::size_t s, std::size_t e) const override;
    bool compatible(const Transform& other) const override;

private:
    void product(const MultiplyParameters& pars, std::byte* M, std::byte* Xd, const std::byte* Xa, const std::byte* Xb,
                 c32i* T, std::size_t s, std::size_t e) const;

    FftLength length;
};

} // namespace zvp
