#pragma once

#include "multiply/algorithms/word_pair_transform.h"
#include "multiply/fft/fft_length.h"

namespace zvp {

/// "FFT" as a transform. It folds: a product that is longer than the capacity of N bits comes modulo 2^N + 1.
///
/// A product of raw words that doesn't fold is checked modulo 2^61 - 1 from least_checked_bits on: all words of it, whatever
/// the range, or ConvolutionFailedException, "Modular redundancy check failed.". A kept form has no room for its operand's
/// hash, and what has folded can't be told from the hashes of the operands.
class FFTTransform final : public WordPairTransform {
public:
    static constexpr const char* id = "FFT";

    explicit FFTTransform(std::uint64_t bits);

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
    std::span<const c32i> product_words(const std::byte* M, std::size_t length) const override;
    std::optional<std::uint64_t> left_out(const std::byte* M, std::size_t product_length, std::size_t s,
                                          std::size_t e) const override;
    std::optional<std::uint64_t> taken(const std::byte* M, std::size_t s, std::size_t e) const override;

    /// Below, the check would take more than 3 % of a product: 4.7 % of 2^16 bits, 3.0 % of 2^18, 2.1 % of 2^22 (one thread,
    /// avx512, AMD EPYC of Zen 4).
    static constexpr std::uint64_t least_checked_bits = 1 << 18;

private:
    bool is_checked(std::uint64_t product_words) const;

    /// Throws unless the product at M, without a top word, has that hash.
    void check(const std::byte* M, int top, std::uint64_t hash) const;

    FftLength length;
};

} // namespace zvp
