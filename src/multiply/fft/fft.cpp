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
    constexpr std::size_t read_ahead = 32;
    const FftShape shape = fft_shape(tables.kernel_set(), length);
    const FftJob job = make_job(tables, length, shape);
    const std::size_t half_bytes = job.points / 8 * job.bits_per_point;
    const bool half = bytes <= half_bytes;
    const std::size_t all = half ? half_bytes : 2 * half_bytes;
    std::memcpy(M, A, bytes);
    std::memset(M + bytes, 0, all + read_ahead - bytes);
    fft_kernels(tables.kernel_set(), shape.lanes).forward(job, as_doubles(X), M, half);
}

int fft_product(const FftTables& tables, const FftLength& length, std::byte* M, std::byte* Xd, const std::byte* Xa,
                const std::byte* Xb) {
    const FftShape shape = fft_shape(tables.kernel_set(), length);
    const FftJob job = make_job(tables, length, shape);
    return fft_kernels(tables.kernel_set(), shape.lanes)
        .product(job, as_doubles(Xd), as_doubles(Xa), as_doubles(Xb), M);
}

} // namespace zvp
