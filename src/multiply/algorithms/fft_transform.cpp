#include "multiply/algorithms/fft_transform.h"

#include "multiply/contract/multiply_tables.h"
#include "multiply/fft/fft.h"

#include <cstring>

namespace zvp {

FFTTransform::FFTTransform(std::uint64_t bits) : length(fft_length(bits)) {
    capacity_bits = length.capacity_bits();
    transform_bytes = fft_transform_bytes(length);
    scratch_bytes = fft_scratch_bytes(length);
    requested_bits = bits;
}

void FFTTransform::forward(const MultiplyParameters& pars, std::byte* M, std::byte* X, const c32i* A,
                           std::size_t AL) const {
    check_capacity(AL);
    fft_forward(pars.tables->get<FftTables>(), length, M, X, reinterpret_cast<const std::byte*>(A), AL * sizeof *A);
}

void FFTTransform::inverse_fsqr(const MultiplyParameters& pars, std::byte* M, std::byte* Xd, std::byte* Xs, c32i* T,
                                std::size_t s, std::size_t e) const {
    product(pars, M, Xd, Xs, Xs, T, s, e);
}

void FFTTransform::inverse_fmul(const MultiplyParameters& pars, std::byte* M, std::byte* Xa, const std::byte* Xb,
                                c32i* T, std::size_t s, std::size_t e) const {
    product(pars, M, Xa, Xa, Xb, T, s, e);
}

bool FFTTransform::compatible(const Transform& other) const {
    const auto* same_class = dynamic_cast<const FFTTransform*>(&other);
    return same_class && same_class->length.code == length.code && same_class->capacity_bits == capacity_bits;
}

void FFTTransform::product(const MultiplyParameters& pars, std::byte* M, std::byte* Xd, const std::byte* Xa,
                           const std::byte* Xb, c32i* T, std::size_t s, std::size_t e) const {
    check_capacity(e);
    fft_product(pars.tables->get<FftTables>(), length, M, Xd, Xa, Xb);
    if (s < e) std::memcpy(T, M + s * sizeof *T, (e - s) * sizeof *T);
}

} // namespace zvp
