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
// What keeps the product exact is the bits per point: a point is rounded rightly as long as its error is below 1/2. With
// balanced digits |a_j| <= 2^(b-1), a and b of L points have |a|_2 |b|_2 <= L 2^(2b-2) = 2^44 to 2^47 over the rows of
// the table. Let u = 2^-53 and k be the levels, a radix of 3 or 5 counting as 2 or 3.
//
// Bound. A level is sqrt(2) times a unitary step. Half of its points are multiplied by roots, which costs 2u of their
// size (C.-P. Jeannerod et al., "Error bounds on complex floating-point multiplication with an FMA", 2017; without fused
// operations sqrt(5) u: R. Brent, C. Percival, P. Zimmermann, "Error bounds on complex floating-point multiplication",
// 2007) and 0.73u for the error of the root; the additions cost u. So a forward form is off by 3.73 k u of its 2-norm at
// most. A point of the product is a sum over all products of the forms' points, of which the absolute values sum up to
// n |a|_2 |b|_2 at most (Cauchy), and so do those of the partial sums at each level of the inverse. Hence
//     |error| <= (11.2 k + 3) u |a|_2 |b|_2        (sse3: (11.9 k + 5) u |a|_2 |b|_2),
// up to terms in u^2: 2.2 to 2.4 for the worst rows (2^26 points of 11 bits, 3 * 2^15 of 16), 0.7 to 0.8 where |a|_2 and
// |b|_2 are those of random operands.
//
// The rest is statistical: the errors of k levels would all have to point one way, and for most operands those of
// different points are independent as well and average out (2^26 random points of 11 bits: below 0.0001). They don't
// where a form is concentrated at few roots, as with points that are all equal or whose signs follow bits of their
// place. A search among such operands with hill climbing from the worst, for lengths from 2^7 to 3 * 2^15, got an error
// of 0.23 at 2^7 points of 21 bits, 0.22 (sse3) and 0.17 at 3 * 2^15 of 16, and less at others; the tests' operands come
// to 0.14 for lengths up to 2^26.

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

/// fft_forward() of A and of B and fft_product(), in less time: M = their product, Xb = the form of B, Xa is working
/// memory. fft_square() is that of A and A.
int fft_multiply(const FftTables& tables, const FftLength& length, std::byte* M, std::byte* Xa, const std::byte* A,
                 std::size_t a_bytes, std::byte* Xb, const std::byte* B, std::size_t b_bytes);
int fft_square(const FftTables& tables, const FftLength& length, std::byte* M, std::byte* X, const std::byte* A,
               std::size_t bytes);

/// A = A * B, or A * A, modulo 2^N + 1, N = 32 n, the capacity of `length`; returns the top word: 1 when the result is
/// 2^N, with all n words zero. A, B: n words, aligned to 4 bytes. M: fft_scratch_bytes() and behind them two, or one,
/// transforms. Operands that are `open` may be read a byte before and 32 bytes behind their words: that spares a copy.
int ring_mul(const FftTables& tables, const FftLength& length, std::uint32_t* A, const std::uint32_t* B, std::byte* M,
             bool open = false);
int ring_sqr(const FftTables& tables, const FftLength& length, std::uint32_t* A, std::byte* M, bool open = false);

} // namespace zvp
