#include "multiply/basecase/limb_products.h"

#include <cstring>

namespace zvp::MULB {

namespace {

/// Whether the h limbs at X are at least the l limbs at Y; h is l or l + 1.
bool ge(const limb* X, std::size_t h, const limb* Y, std::size_t l) {
    if (h > l && X[l] != 0) return true;
    for (std::size_t i = l; i-- > 0;)
        if (X[i] != Y[i]) return X[i] > Y[i];
    return true;
}

/// T[0, h) = |low half - high half| of the h + l limbs at A; returns whether the low half is the greater or both are
/// equal.
bool difference(const ProductKernels& kernels, limb* T, const limb* A, std::size_t h, std::size_t l) {
    const bool low_first = ge(A, h, A + h, l);
    const limb* const from = low_first ? A : A + h;
    const limb* const what = low_first ? A + h : A;
    const std::uint64_t borrow = kernels.subtract(T, from, what, l);
    if (h > l) T[l] = A[l] - borrow; // A[l] is 0 when the high half is the greater, and then nothing was borrowed
    return low_first;
}

void add_at(limb* T, std::size_t n, std::uint64_t x) {
    for (std::size_t i = 0; x != 0 && i < n; ++i) {
        T[i] += x;
        x = T[i] < x;
    }
}

/// T += (P0 + P2 -+ S) * W^h, P0 = T[0, 2h), P2 = T[2h, 2h + 2l) as they stand; S holds 2h limbs and is used up.
/// The middle term is never negative.
void recombine(const ProductKernels& kernels, limb* T, std::size_t h, std::size_t l, limb* S, bool plus) {
    std::int64_t carry = kernels.merge(S, T, T + 2 * h, 2 * l, plus);
    if (h > l) {
        static constexpr limb zero[2] = {0, 0};
        const std::int64_t below = carry;
        carry = kernels.merge(S + 2 * l, T + 2 * l, zero, 2, plus);
        if (below < 0)
            carry -= S[2 * l]-- == 0 && S[2 * l + 1]-- == 0;
        else
            carry += (S[2 * l] += static_cast<std::uint64_t>(below)) < static_cast<std::uint64_t>(below)
                     && ++S[2 * l + 1] == 0;
    }
    const std::uint64_t top = kernels.add(T + h, S, 2 * h);
    add_at(T + 3 * h, 2 * l - h, top + static_cast<std::uint64_t>(carry));
}

} // namespace

void square(const ProductKernels& kernels, limb* T, const limb* A, std::size_t n, limb* S) {
    if (n < kernels.karatsuba_sqr) {
        T[2 * n - 1] = square_schoolbook(kernels, T, A, n);
        return;
    }
    const std::size_t l = n / 2, h = n - l;
    difference(kernels, T, A, h, l);
    square(kernels, S, T, h, S + 2 * h);
    square(kernels, T, A, h, S + 2 * h);
    square(kernels, T + 2 * h, A + h, l, S + 2 * h);
    recombine(kernels, T, h, l, S, false);
}

void multiply_equal(const ProductKernels& kernels, limb* T, const limb* A, const limb* B, std::size_t n, limb* S) {
    if (n < kernels.karatsuba_mul) {
        T[2 * n - 1] = multiply_schoolbook(kernels, T, A, n, B, n);
        return;
    }
    const std::size_t l = n / 2, h = n - l;
    const bool sA = difference(kernels, T, A, h, l);
    const bool sB = difference(kernels, T + h, B, h, l);
    multiply_equal(kernels, S, T, T + h, h, S + 2 * h);
    multiply_equal(kernels, T, A, B, h, S + 2 * h);
    multiply_equal(kernels, T + 2 * h, A + h, B + h, l, S + 2 * h);
    recombine(kernels, T, h, l, S, sA != sB);
}

void multiply(const ProductKernels& kernels, limb* T, const limb* A, std::size_t a, const limb* B, std::size_t b,
              limb* S) {
    if (a < b) {
        std::swap(A, B);
        std::swap(a, b);
    }
    if (b < kernels.karatsuba_mul) {
        T[a + b - 1] = multiply_schoolbook(kernels, T, A, a, B, b);
        return;
    }
    multiply_equal(kernels, T, A, B, b, S);
    for (std::size_t done = b; done < a;) {
        const std::size_t slice = a - done < b ? a - done : b;
        multiply(kernels, S, B, b, A + done, slice, S + b + slice);
        limb* const Q = T + done;
        std::memcpy(Q + b, S + b, slice * sizeof(limb));
        add_at(Q + b, slice, kernels.add(Q, S, b));
        done += slice;
    }
}

} // namespace zvp::MULB
