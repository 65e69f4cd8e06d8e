#include "multiply/fft/fft.h"

#include <cstring>

namespace zvp {

namespace {

FftJob make_job(const FftTables& tables, const FftLength& length, const FftShape& shape) {
    return {length.L / 2, length.m, shape.levels, length.bits_per_point, tables.roots(length)};
}

double* as_doubles(std::byte* x) { return reinterpret_cast<double*>(x); }
const double* as_doubles(const std::byte* x) { return reinterpret_cast<const double*>(x); }

} // namespace

std::uint64_t fft_transform_bytes(const FftLength& length) { return (8 * length.L + 63) / 64 * 64; }

std::uint64_t fft_scratch_bytes(const FftLength& length) { return (4 * length.L + 63) / 64 * 64; }

void fft_forward(const FftTables& tables, const FftLength& length, std::byte* M, std::byte* X, const std::byte* A,
                 std::size_t bytes) {
    constexpr std::size_t before = 8, behind = 32; // what the kernels read beside the operand
    const FftShape shape = fft_shape(tables.kernel_set(), length);
    const FftJob job = make_job(tables, length, shape);
    const std::size_t half_bytes = job.points / 8 * job.bits_per_point;
    const bool half = bytes <= half_bytes;
    const std::size_t all = half ? half_bytes : 2 * half_bytes;
    std::memset(M, 0, before);
    if (bytes > 0) std::memcpy(M + before, A, bytes); // no words may be a null pointer
    std::memset(M + before + bytes, 0, all + behind - bytes);
    fft_kernels(tables.kernel_set(), shape.lanes).forward(job, as_doubles(X), M + before, half);
}

int fft_product(const FftTables& tables, const FftLength& length, std::byte* M, std::byte* Xd, const std::byte* Xa,
                const std::byte* Xb) {
    const FftShape shape = fft_shape(tables.kernel_set(), length);
    const FftJob job = make_job(tables, length, shape);
    return fft_kernels(tables.kernel_set(), shape.lanes)
        .product(job, as_doubles(Xd), as_doubles(Xa), as_doubles(Xb), M);
}

namespace {

int ring_product(const FftTables& tables, const FftLength& length, std::uint32_t* A, std::byte* M, std::byte* Xa,
                 const std::byte* Xb) {
    const int top = fft_product(tables, length, M, Xa, Xa, Xb);
    std::memcpy(A, M, length.capacity_bits() / 8);
    return top;
}

} // namespace

int ring_mul(const FftTables& tables, const FftLength& length, std::uint32_t* A, const std::uint32_t* B, std::byte* M) {
    std::byte* const Xa = M + fft_scratch_bytes(length);
    std::byte* const Xb = Xa + fft_transform_bytes(length);
    const std::size_t bytes = length.capacity_bits() / 8;
    fft_forward(tables, length, M, Xa, reinterpret_cast<const std::byte*>(A), bytes);
    fft_forward(tables, length, M, Xb, reinterpret_cast<const std::byte*>(B), bytes);
    return ring_product(tables, length, A, M, Xa, Xb);
}

int ring_sqr(const FftTables& tables, const FftLength& length, std::uint32_t* A, std::byte* M) {
    std::byte* const X = M + fft_scratch_bytes(length);
    fft_forward(tables, length, M, X, reinterpret_cast<const std::byte*>(A), length.capacity_bits() / 8);
    return ring_product(tables, length, A, M, X, X);
}

} // namespace zvp
