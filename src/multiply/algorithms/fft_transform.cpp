#include "multiply/algorithms/fft_transform.h"

#include "app/console/watching.h"
#include "app/failure/exceptions.h"
#include "digits/hash/word_hash.h"
#include "multiply/contract/multiply_tables.h"
#include "multiply/fft/fft.h"

#include <algorithm>
#include <cstring>

namespace zvp {

namespace {

const std::byte* as_bytes(const c32i* A) { return reinterpret_cast<const std::byte*>(A); }

/// T = words s .. e - 1 of those at M.
void copy_range(c32i* T, const std::byte* M, std::size_t s, std::size_t e) {
    if (s < e) std::memcpy(T, M + s * sizeof *T, (e - s) * sizeof *T);
}

} // namespace

FFTTransform::FFTTransform(std::uint64_t bits) : length(fft_length(bits)) {
    capacity_bits = length.capacity_bits();
    transform_bytes = fft_transform_bytes(length);
    scratch_bytes = fft_scratch_bytes(length);
    requested_bits = bits;
}

void FFTTransform::forward(const MultiplyParameters& pars, std::byte* M, std::byte* X, const c32i* A,
                           std::size_t AL) const {
    check_capacity(AL);
    fft_forward(pars.tables->get<FftTables>(), length, M, X, as_bytes(A), AL * sizeof *A);
}

void FFTTransform::inverse_fsqr(const MultiplyParameters& pars, std::byte* M, std::byte* Xd, std::byte* Xs, c32i* T,
                                std::size_t s, std::size_t e) const {
    check_capacity(e);
    fft_product(pars.tables->get<FftTables>(), length, M, Xd, Xs, Xs);
    copy_range(T, M, s, e);
}

void FFTTransform::inverse_fmul(const MultiplyParameters& pars, std::byte* M, std::byte* Xa, const std::byte* Xb,
                                c32i* T, std::size_t s, std::size_t e) const {
    check_capacity(e);
    fft_product(pars.tables->get<FftTables>(), length, M, Xa, Xa, Xb);
    copy_range(T, M, s, e);
}

void FFTTransform::forward_fsqr(const MultiplyParameters& pars, std::byte* M, std::byte* X, const c32i* A,
                                std::size_t AL, c32i* T, std::size_t s, std::size_t e) const {
    check_capacity(AL);
    check_capacity(e);
    const int top = fft_square(pars.tables->get<FftTables>(), length, M, X, as_bytes(A), AL * sizeof *A);
    if (is_checked(2 * std::uint64_t{AL})) {
        const std::uint64_t a = hash_words(0, A, AL);
        check(M, top, mul_mod(a, a));
    }
    copy_range(T, M, s, e);
}

void FFTTransform::forward_fmul(const MultiplyParameters& pars, std::byte* M, std::byte* Xa, const c32i* A,
                                std::size_t AL, std::byte* Xb, const c32i* B, std::size_t BL, c32i* T, std::size_t s,
                                std::size_t e) const {
    if (!B) return Transform::forward_fmul(pars, M, Xa, A, AL, Xb, B, BL, T, s, e);
    check_capacity(std::max(AL, BL));
    check_capacity(e);
    const int top = fft_multiply(pars.tables->get<FftTables>(), length, M, Xa, as_bytes(A), AL * sizeof *A, Xb,
                                 as_bytes(B), BL * sizeof *B);
    if (is_checked(std::uint64_t{AL} + BL)) check(M, top, mul_mod(hash_words(0, A, AL), hash_words(0, B, BL)));
    copy_range(T, M, s, e);
}

bool FFTTransform::compatible(const Transform& other) const {
    const auto* same_class = dynamic_cast<const FFTTransform*>(&other);
    return same_class && same_class->length.code == length.code && same_class->capacity_bits == capacity_bits;
}

std::span<const c32i> FFTTransform::product_words(const std::byte* M, std::size_t) const {
    return {reinterpret_cast<const c32i*>(M), capacity_bits / word_bits<c32i>};
}

std::optional<std::uint64_t> FFTTransform::left_out(const std::byte* M, std::size_t product_length, std::size_t s,
                                                    std::size_t e) const {
    const auto* words = reinterpret_cast<const c32i*>(M);
    const std::uint64_t above = e < product_length ? hash_words(0, words + e, product_length - e) : 0;
    return add_mod(hash_words(0, words, s), shift_words(above, static_cast<std::int64_t>(e)));
}

std::optional<std::uint64_t> FFTTransform::taken(const std::byte* M, std::size_t s, std::size_t e) const {
    return hash_words(0, reinterpret_cast<const c32i*>(M) + s, e - s);
}

bool FFTTransform::is_checked(std::uint64_t product_words) const {
    const std::uint64_t bits = product_words * word_bits<c32i>;
    return arithmetic_is_watched && bits >= least_checked_bits && bits <= capacity_bits;
}

void FFTTransform::check(const std::byte* M, int top, std::uint64_t hash) const {
    const auto* words = reinterpret_cast<const c32i*>(M);
    if (top != 0 || hash_words(0, words, capacity_bits / word_bits<c32i>) != hash)
        throw ConvolutionFailedException("FFTTransform::multiply()", "Modular redundancy check failed.");
}

} // namespace zvp
