#pragma once
// What the kernel sets offer to the transform.

#include "multiply/fft/fft_tables.h"

#include <cstddef>

namespace zvp {

/// One length with its roots, as the kernels see it.
struct FftJob {
    std::size_t points;      // complex points, half of the length's real ones
    unsigned family;         // 1, 3 or 5
    unsigned levels;         // binary levels of a family's blocks above the bases
    unsigned bits_per_point; // 7 to 21
    FftTables::Roots roots;
};

struct FftKernels {
    /// x[0, 2 points) = forward form of an operand's bits: points * bits_per_point / 4 bytes, with a byte before them and
    /// 32 bytes behind that may be read, whatever they hold. With `half`, the upper half of the points is zero and not read.
    void (*forward)(const FftJob& job, double* x, const std::byte* bits, bool half);

    /// The first pass of it.
    void (*first_pass)(const FftJob& job, double* x, const std::byte* bits, bool half);

    /// bits (points * bits_per_point / 4 bytes) = the product of the forward forms xa and xb modulo 2^N + 1, N its
    /// width. Returns the top word: 1 when it is 2^N. xd is working memory and may be xa; xb may be xa.
    int (*product)(const FftJob& job, double* xd, const double* xa, const double* xb, std::byte* bits);

    /// The same of two operands behind their first pass. xa is working memory, xb becomes its forward form or is xa.
    int (*multiply)(const FftJob& job, double* xa, double* xb, std::byte* bits);

    /// product() up to the points, which come unrounded and multiplied by the number of points.
    void (*product_points)(const FftJob& job, double* xd, const double* xa, const double* xb);
};

/// The kernels for a length: sets with wide vectors have narrow ones for the shortest lengths.
const FftKernels& fft_kernels(platform::KernelSet set, unsigned lanes);

} // namespace zvp
