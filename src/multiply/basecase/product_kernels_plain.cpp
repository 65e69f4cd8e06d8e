// The inner loops for any x86-64 processor.

#include "multiply/basecase/column_sum.h"
#include "multiply/basecase/product_kernel_tables.h"
#include "multiply/words/carry_chain.h"

namespace zvp::MULB {

namespace {

__extension__ using Wide = unsigned __int128;
__extension__ using SignedWide = __int128;

constexpr std::uint64_t high(Wide x) { return static_cast<std::uint64_t>(x >> 64); }

/// A block is W limbs of A times all limbs of B, summed by columns; T[k] is added to column k where it is set already.
template <std::size_t W>
class ColumnBlock {
public:
    /// T[0, m) holds part of the result already when `add`; T[0, m + W - 1) is set.
    ColumnBlock(limb* T, const limb* A, const limb* B, std::size_t m, bool add)
        : m_T(T), m_A(A), m_B(B), m_m(m), m_add(add) {}

    /// Column k's products A[i] * B[k - i] for i in [first, end).
    void column(std::size_t k, std::size_t first, std::size_t end) {
        for (std::size_t i = first; i < end; ++i) m_sum.add_product(m_A[i], m_B[k - i]);
        finish(k);
    }

    /// The columns [k, end), each of which has all W products.
    void full_columns(std::size_t k, std::size_t end) {
        for (; k < end; ++k) {
            const limb* const b = m_B + k;
            m_sum.add_product(m_A[0], b[0]);
            if constexpr (W > 1) m_sum.add_product(m_A[1], b[-1]);
            if constexpr (W > 2) m_sum.add_product(m_A[2], b[-2]);
            if constexpr (W > 3) m_sum.add_product(m_A[3], b[-3]);
            finish(k);
        }
    }

    /// The columns from m on, the top one of which is returned.
    std::uint64_t last_columns() {
        for (std::size_t k = m_m; k + 1 < m_m + W; ++k) column(k, k - m_m + 1, W);
        return m_sum.next();
    }

private:
    void finish(std::size_t k) {
        if (m_add && k < m_m) m_sum.add_limb(m_T[k]);
        m_T[k] = m_sum.next();
    }

    limb* m_T;
    const limb* m_A;
    const limb* m_B;
    std::size_t m_m;
    bool m_add;
    ColumnSum m_sum;
};

/// T[0, m + W - 1) = A[0, W) * B[0, m), plus T[0, m) when `add`, without the top limb, which is returned; m >= W.
template <std::size_t W>
std::uint64_t block(limb* T, const limb* A, const limb* B, std::size_t m, bool add) {
    ColumnBlock<W> columns(T, A, B, m, add);
    for (std::size_t k = 0; k + 1 < W; ++k) columns.column(k, 0, k + 1);
    columns.full_columns(W - 1, m);
    return columns.last_columns();
}

using Block = std::uint64_t (*)(limb*, const limb*, const limb*, std::size_t, bool);

constexpr Block blocks[4] = {block<4>, block<1>, block<2>, block<3>};

std::uint64_t mul(limb* T, const limb* A, std::size_t a, const limb* B, std::size_t b) {
    if (a > b) return mul(T, B, b, A, a);
    std::uint64_t top = blocks[a % 4](T, A, B, b, false);
    for (std::size_t i = (a - 1) % 4 + 1; i < a; i += 4) {
        T[i + b - 1] = top;
        top = block<4>(T + i, A + i, B, b, true);
    }
    return top;
}

/// The products A[i] * A[j], i < j, i < 4, j < n: T[1, n + 4), plus what T[0, n) holds already when `add`. With n = 4 only
/// T[1, 7): the products of different limbs never reach the top limb of a square.
void triangle_block(limb* T, const limb* A, std::size_t n, bool add) {
    ColumnBlock<4> columns(T, A, A, n, add);
    const std::size_t half = n < 7 ? n : 7;
    for (std::size_t k = 0; k < half; ++k) columns.column(k, 0, (k + 1) / 2);
    if (n > 7) {
        columns.full_columns(7, n);
        T[n + 3] = columns.last_columns();
        return;
    }
    for (std::size_t k = n; k < (n == 4 ? 7 : n + 4); ++k)
        columns.column(k, k - n + 1, (k + 1) / 2 < 4 ? (k + 1) / 2 : 4);
}

/// T[0, 2n - 1) = 2 * T + the squares of A's limbs at even places, without the top limb, which is returned; T[1, 2n - 1)
/// holds the products of different limbs.
std::uint64_t double_and_add_squares(limb* T, const limb* A, std::size_t n) {
    std::uint64_t top = 0, shifted_out = 0;
    T[0] = 0;
    for (std::size_t i = 0; i < n; ++i) {
        if (i != 0) {
            const Wide v = Wide{T[2 * i - 1]} * 2 + shifted_out + top;
            T[2 * i - 1] = static_cast<std::uint64_t>(v);
            shifted_out = high(v);
        }
        const Wide v = Wide{A[i]} * A[i] + shifted_out;
        const Wide u = Wide{T[2 * i]} * 2 + static_cast<std::uint64_t>(v);
        T[2 * i] = static_cast<std::uint64_t>(u);
        top = high(v);
        shifted_out = high(u);
    }
    return top + shifted_out;
}

std::uint64_t sqr(limb* T, const limb* A, std::size_t n) {
    std::size_t i = 0;
    for (; i + 4 <= n; i += 4) triangle_block(T + 2 * i, A + i, n - i, i != 0);
    for (; i < n; ++i) {
        ColumnBlock<1> row(T + 2 * i, A + i, A + i, n - i, i != 0);
        row.column(0, 0, 0);
        row.full_columns(1, n - i);
        if (i + 1 < n) T[n + i] = row.last_columns();
    }
    return double_and_add_squares(T, A, n);
}

std::uint64_t subtract(limb* T, const limb* A, const limb* B, std::size_t n) {
    return subtract_chain(T, A, B, n, false);
}

std::uint64_t add(limb* T, const limb* A, std::size_t n) { return add_chain(T, T, A, n, false); }

std::int64_t merge(limb* S, const limb* P0, const limb* P2, std::size_t n, bool plus) {
    SignedWide carry = 0;
    for (std::size_t i = 0; i < n; ++i) {
        carry += SignedWide{P0[i]} + SignedWide{P2[i]};
        carry += plus ? SignedWide{S[i]} : -SignedWide{S[i]};
        S[i] = static_cast<std::uint64_t>(carry);
        carry >>= 64;
    }
    return static_cast<std::int64_t>(carry);
}

} // namespace

const ProductKernels& plain_product_kernels() {
    // basecase_bench and basecase_bench thresholds, Zen 5.
    static constexpr ProductKernels kernels{mul, sqr, subtract, add, merge, 8, 13, 13};
    return kernels;
}

} // namespace zvp::MULB
