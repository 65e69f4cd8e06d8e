#include "multiply/fft/fft.h"

#include <cstring>

namespace zvp {

namespace {

double* as_doubles(std::byte* x) { return reinterpret_cast<double*>(x); }
const double* as_doubles(const std::byte* x) { return reinterpret_cast<const double*>(x); }

constexpr std::size_t bytes_before = 8, bytes_behind = 32; // what the kernels may read beside an operand

/// A length with what computes it.
struct Transform {
    FftShape shape;
    FftJob job;
    const FftKernels& kernels;

    Transform(const FftTables& tables, const FftLength& length)
        : shape(fft_shape(tables.kernel_set(), length)),
          job{length.L / 2, length.m, shape.levels, length.bits_per_point, tables.roots(length)},
          kernels(fft_kernels(tables.kernel_set(), shape.lanes)) {}

    /// M = A with zeros behind, up to the middle of the length or its end. Returns whether it is the middle.
    bool pad(std::byte* M, const std::byte* A, std::size_t bytes) const {
        const std::size_t half_bytes = job.points / 8 * job.bits_per_point;
        const bool half = bytes <= half_bytes;
        M[bytes_before - 1] = {};
        if (bytes > 0) std::memcpy(M + bytes_before, A, bytes); // no words may be a null pointer
        std::memset(M + bytes_before + bytes, 0, (half ? half_bytes : 2 * half_bytes) + bytes_behind - bytes);
        return half;
    }

    void first_pass(std::byte* M, std::byte* X, const std::byte* A, std::size_t bytes) const {
        const bool half = pad(M, A, bytes);
        kernels.first_pass(job, as_doubles(X), M + bytes_before, half);
    }
};

} // namespace

std::uint64_t fft_transform_bytes(const FftLength& length) { return (8 * length.L + 63) / 64 * 64; }

std::uint64_t fft_scratch_bytes(const FftLength& length) { return (4 * length.L + 63) / 64 * 64; }

void fft_forward(const FftTables& tables, const FftLength& length, std::byte* M, std::byte* X, const std::byte* A,
                 std::size_t bytes) {
    const Transform t(tables, length);
    const bool half = t.pad(M, A, bytes);
    t.kernels.forward(t.job, as_doubles(X), M + bytes_before, half);
}

int fft_product(const FftTables& tables, const FftLength& length, std::byte* M, std::byte* Xd, const std::byte* Xa,
                const std::byte* Xb) {
    const Transform t(tables, length);
    return t.kernels.product(t.job, as_doubles(Xd), as_doubles(Xa), as_doubles(Xb), M);
}

int fft_multiply(const FftTables& tables, const FftLength& length, std::byte* M, std::byte* Xa, const std::byte* A,
                 std::size_t a_bytes, std::byte* Xb, const std::byte* B, std::size_t b_bytes) {
    const Transform t(tables, length);
    t.first_pass(M, Xa, A, a_bytes);
    t.first_pass(M, Xb, B, b_bytes);
    return t.kernels.multiply(t.job, as_doubles(Xa), as_doubles(Xb), M);
}

int fft_square(const FftTables& tables, const FftLength& length, std::byte* M, std::byte* X, const std::byte* A,
               std::size_t bytes) {
    const Transform t(tables, length);
    t.first_pass(M, X, A, bytes);
    return t.kernels.multiply(t.job, as_doubles(X), as_doubles(X), M);
}

namespace {

/// The first pass of a ring's element.
void ring_first_pass(const Transform& t, std::byte* M, std::byte* X, const std::uint32_t* A, std::size_t bytes,
                     bool open) {
    const auto* bits = reinterpret_cast<const std::byte*>(A);
    if (!open) return t.first_pass(M, X, bits, bytes);
    t.kernels.first_pass(t.job, as_doubles(X), bits, false);
}

int ring_product(const Transform& t, std::uint32_t* A, std::byte* Xa, std::byte* Xb) {
    return t.kernels.multiply(t.job, as_doubles(Xa), as_doubles(Xb), reinterpret_cast<std::byte*>(A));
}

} // namespace

int ring_mul(const FftTables& tables, const FftLength& length, std::uint32_t* A, const std::uint32_t* B, std::byte* M,
             bool open) {
    const Transform t(tables, length);
    const std::size_t bytes = length.capacity_bits() / 8;
    std::byte* const Xa = M + fft_scratch_bytes(length);
    std::byte* const Xb = Xa + fft_transform_bytes(length);
    ring_first_pass(t, M, Xa, A, bytes, open);
    ring_first_pass(t, M, Xb, B, bytes, open);
    return ring_product(t, A, Xa, Xb);
}

int ring_sqr(const FftTables& tables, const FftLength& length, std::uint32_t* A, std::byte* M, bool open) {
    const Transform t(tables, length);
    const std::size_t bytes = length.capacity_bits() / 8;
    std::byte* const X = M + fft_scratch_bytes(length);
    ring_first_pass(t, M, X, A, bytes, open);
    return ring_product(t, A, X, X);
}

} // namespace zvp
