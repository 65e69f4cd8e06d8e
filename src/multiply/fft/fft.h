#pragma once
// Products by a right-angle convolution in double precision, on one thread.
//
// An operand is cut into points of b bits. Point j of the upper half of L points is the imaginary part of complex point
// j, so that the product of the complex polynomials modulo x^(L/2) - i is that of the points modulo x^L + 1: the result
// is the product of the operands modulo 2^N + 1, N = L b. (R. Crandall, B. Fagin, "Discrete weighted transforms and
// large-integer arithmetic", 1994.)
//
//   bits of A          n = L/2 complex points, one block                  bits of the product
//      |  front: unpack, radix 2, 4, 8, 3 or 5                                ^  carry: scale, round, carry, pack
//      v                                                                      |
//   [ x^n - i ] -> passes of radix 4 and 8 -> bases of V^2 points -> product -> bases -> passes backwards
//
// No pass reorders points: the forward form is in the order that the divisions leave, and only the inverse reads it.
//
// What keeps the product exact is the bits per point. With balanced digits |a_j| <= 2^(b-1), a and b of L points have
// |a|_2 |b|_2 <= L 2^(2b-2) = 2^46 to 2^47 over the rows of the table, and the error of a point of the product is a
// multiple of 2^-53 of that: each level adds to the vectors' 2-norm a relative error of about 2^-53, and errors of
// different levels and points are independent, so that the multiple is of the order of the square root of the levels.
// Even if all of up to 90 levels' errors pointed one way, random operands (|a|_2 a third) would stay below 1/2. The largest
// distance from an integer that the tests see, with the operands that are the worst for the norm and lengths up to 2^26, is
// 0.15; rounding fails
// at 1/2.

#include "multiply/fft/fft_kernels.h"
#include "multiply/fft/fft_length.h"
#include "multiply/fft/fft_tables.h"

namespace zvp {

/// Bytes of one forward form, and of the working memory M beside it. Both are multiples of 64.
std::uint64_t fft_transform_bytes(const FftLength& length);
std::uint64_t fft_scratch_bytes(const FftLength& length);

/// X = forward form of `bytes` bytes at A, which may be at most the length's capacity. X, M: aligned to 64 bytes.
void fft_forward(const FftTables& tables, const FftLength& length, std::byte* M, std::byte* X, const std::byte* A,
                 std::size_t bytes);

/// M = the product of the forward forms Xa and Xb modulo 2^N + 1, N bits; returns the top word, 1 when it is 2^N.
/// Xd is working memory and may be Xa; Xb may be Xa.
int fft_product(const FftTables& tables, const FftLength& length, std::byte* M, std::byte* Xd, const std::byte* Xa,
                const std::byte* Xb);

/// A = A * B, or A * A, modulo 2^N + 1, N = 32 n, the capacity of `length`; returns the top word: 1 when the result is
/// 2^N, with all n words zero. A, B: n words, aligned to 8 bytes. M: fft_scratch_bytes() and behind them two, or one,
/// transforms.
int ring_mul(const FftTables& tables, const FftLength& length, std::uint32_t* A, const std::uint32_t* B, std::byte* M);
int ring_sqr(const FftTables& tables, const FftLength& length, std::uint32_t* A, std::byte* M);

} // namespace zvp
