// The inner loops for processors with BMI2 and ADX.

#include "multiply/basecase/adx_rows.h"
#include "multiply/basecase/product_kernel_tables.h"
#include "multiply/words/carry_chain.h"

#include <utility>

namespace zvp::MULB {

namespace {

/// T[0, m + W - 1) = A[0, W) * B[0, m), plus T[0, m) when Add, without the top limb, which is returned.
template <std::size_t W, bool Add>
std::uint64_t block(limb* T, const limb* A, const limb* B, std::size_t m) {
    RowSum sum;
    rows<W, Add>(sum, T, A, B, m);
    return sum.store<W>(T + m);
}

using Block = std::uint64_t (*)(limb*, const limb*, const limb*, std::size_t);

constexpr Block first_block[8] = {block<8, false>, block<1, false>, block<2, false>, block<3, false>,
                                  block<4, false>, block<5, false>, block<6, false>, block<7, false>};

std::uint64_t mul(limb* T, const limb* A, std::size_t a, const limb* B, std::size_t b) {
    if (a > b) {
        std::swap(A, B);
        std::swap(a, b);
    }
    std::uint64_t top = first_block[a % 8](T, A, B, b);
    for (std::size_t i = (a - 1) % 8 + 1; i < a; i += 8) {
        T[i + b - 1] = top;
        top = block<8, true>(T + i, A + i, B, b);
    }
    return top;
}

/// The products A[i] * A[j], i < j < W, and those of A[0, W) with the m limbs behind: T[1, 2W + m), plus T[0, W + m)
/// when Add. With m = 0 only T[1, 2W - 1): the products of different limbs never reach the top limb of a square.
template <std::size_t W, bool Add>
void triangle_block(limb* T, const limb* A, std::size_t m) {
    RowSum sum;
    [&]<std::size_t... J>(std::index_sequence<J...>) { (rows<J + 1, Add>(sum, T + J + 1, A, A + J + 1, 1), ...); }
    (std::make_index_sequence<W - 1>());
    if (m != 0) rows<W, Add>(sum, T + W, A, A + W, m);
    const std::uint64_t top = sum.store<W>(T + W + m);
    if (m != 0) T[2 * W + m - 1] = top;
}

/// T[0, 2n - 1) = 2 * T + the squares of A's limbs at even places, without the top limb, which is returned; T[1, 2n - 1)
/// holds the products of different limbs, n > 1. The carry flag's chain doubles, the overflow flag's adds the squares;
/// jrcxz is the branch that needs neither. First (n - 1) mod 4 limbs, then four a round, then the last in C++.
std::uint64_t double_and_add_squares(limb* T, const limb* A, std::size_t n) {
    T[0] = 0;
    const std::size_t rounds = (n - 1) / 4;
    std::size_t count = (n - 1) % 4;
    std::uint64_t t0, t1, low, high;
    __asm__ volatile(".macro zvp_double_and_add_square at\n\t"
                     "mov \\at(%[A]), %%rdx\n\t"
                     "mov 2 * \\at(%[T]), %[t0]\n\t"
                     "mov 2 * \\at + 8(%[T]), %[t1]\n\t"
                     "mulx %%rdx, %[low], %[high]\n\t"
                     "adcx %[t0], %[t0]\n\t"
                     "adcx %[t1], %[t1]\n\t"
                     "adox %[low], %[t0]\n\t"
                     "adox %[high], %[t1]\n\t"
                     "mov %[t0], 2 * \\at(%[T])\n\t"
                     "mov %[t1], 2 * \\at + 8(%[T])\n\t"
                     ".endm\n\t"
                     "xor %k[low], %k[low]\n" // clears both flags
                     "1:\n\t"
                     "jrcxz 2f\n\t"
                     "zvp_double_and_add_square 0\n\t"
                     "lea 8(%[A]), %[A]\n\t"
                     "lea 16(%[T]), %[T]\n\t"
                     "lea -1(%[count]), %[count]\n\t"
                     "jmp 1b\n"
                     "2:\n\t"
                     "mov %[rounds], %[count]\n\t"
                     "jrcxz 3f\n\t"
                     "jmp 4f\n"
                     "3:\n\t"
                     "jmp 5f\n"
                     "4:\n\t"
                     ".irp at, 0, 8, 16, 24\n\t"
                     "zvp_double_and_add_square \\at\n\t"
                     ".endr\n\t"
                     "lea 32(%[A]), %[A]\n\t"
                     "lea 64(%[T]), %[T]\n\t"
                     "lea -1(%[count]), %[count]\n\t"
                     "jrcxz 5f\n\t"
                     "jmp 4b\n"
                     "5:\n\t"
                     "mov $0, %k[t0]\n\t"
                     "mov $0, %k[t1]\n\t"
                     "adcx %[t0], %[t0]\n\t"
                     "adox %[t1], %[t1]\n\t"
                     ".purgem zvp_double_and_add_square"
                     : [A] "+&r"(A), [T] "+&r"(T), [count] "+&c"(count), [t0] "=&r"(t0), [t1] "=&r"(t1),
                       [low] "=&r"(low), [high] "=&r"(high)
                     : [rounds] "r"(rounds)
                     : "rdx", "cc", "memory");
    __extension__ using Wide = unsigned __int128;
    const Wide sum = Wide{A[0]} * A[0] + (Wide{T[0]} << 1) + t0 + t1;
    T[0] = static_cast<std::uint64_t>(sum);
    return static_cast<std::uint64_t>(sum >> 64);
}

using TriangleBlock = void (*)(limb*, const limb*, std::size_t);

constexpr TriangleBlock first_triangle[8] = {
    triangle_block<8, false>, triangle_block<1, false>, triangle_block<2, false>, triangle_block<3, false>,
    triangle_block<4, false>, triangle_block<5, false>, triangle_block<6, false>, triangle_block<7, false>};

std::uint64_t sqr(limb* T, const limb* A, std::size_t n) {
    std::size_t i = (n - 1) % 8 + 1;
    first_triangle[n % 8](T, A, n - i);
    for (; i < n; i += 8) triangle_block<8, true>(T + 2 * i, A + i, n - i - 8);
    return double_and_add_squares(T, A, n);
}

/// The carry flag's chain adds P2, the overflow flag's S. A difference adds the complement of S and 1; the complement is
/// taken in a vector register, where it costs no flag and no branch on the sign.
std::int64_t merge(limb* S, const limb* P0, const limb* P2, std::size_t n, bool plus) {
    const std::uint64_t flip = std::uint64_t{plus} - 1;
    std::int64_t carry = 0;
    std::uint64_t limb0, limb1, s0, s1, vector0, vector1;
    __asm__ volatile(
        "xor %k[s0], %k[s0]\n\t" // clears the overflow flag
        "movq %[flip], %[s0]\n\t"
        "adcx %[s0], %[s0]\n" // the carry flag becomes the 1 that a difference adds
        "1:\n\t"
        "movq (%[S]), %[vector0]\n\t"
        "movq 8(%[S]), %[vector1]\n\t"
        "pxor %[flip], %[vector0]\n\t"
        "pxor %[flip], %[vector1]\n\t"
        "movq %[vector0], %[s0]\n\t"
        "movq %[vector1], %[s1]\n\t"
        "mov (%[P0]), %[limb0]\n\t"
        "mov 8(%[P0]), %[limb1]\n\t"
        "adcx (%[P2]), %[limb0]\n\t"
        "adcx 8(%[P2]), %[limb1]\n\t"
        "adox %[s0], %[limb0]\n\t"
        "adox %[s1], %[limb1]\n\t"
        "mov %[limb0], (%[S])\n\t"
        "mov %[limb1], 8(%[S])\n\t"
        "lea 16(%[S]), %[S]\n\t"
        "lea 16(%[P0]), %[P0]\n\t"
        "lea 16(%[P2]), %[P2]\n\t"
        "lea -2(%[n]), %[n]\n\t"
        "jrcxz 2f\n\t"
        "jmp 1b\n"
        "2:\n\t"
        "adcx %[n], %[carry]\n\t"
        "adox %[n], %[carry]"
        : [S] "+&r"(S), [P0] "+&r"(P0), [P2] "+&r"(P2), [n] "+&c"(n), [carry] "+&r"(carry), [limb0] "=&r"(limb0),
          [limb1] "=&r"(limb1), [s0] "=&r"(s0), [s1] "=&r"(s1), [vector0] "=&x"(vector0), [vector1] "=&x"(vector1)
        : [flip] "x"(flip)
        : "cc", "memory");
    return carry - !plus;
}

std::uint64_t subtract(limb* T, const limb* A, const limb* B, std::size_t n) {
    return subtract_chain(T, A, B, n, false);
}

std::uint64_t add(limb* T, const limb* A, std::size_t n) { return add_chain(T, T, A, n, false); }

} // namespace

const ProductKernels& adx_product_kernels() {
    // basecase_bench and basecase_bench thresholds, Zen 5; between 42 and 56 limbs both squares take the same time.
    static constexpr ProductKernels kernels{mul, sqr, subtract, add, merge, 6, 26, 42};
    return kernels;
}

} // namespace zvp::MULB
