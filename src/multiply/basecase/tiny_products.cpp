#include "multiply/basecase/tiny_products.h"

#include "multiply/basecase/fixed_product.h"

namespace zvp::MULB {

namespace {

template <std::size_t a, std::size_t b, bool half_a = false, bool half_b = false>
std::uint64_t product(limb* T, const limb* A, const limb* B) {
    return fixed_product<a, b, half_a, half_b>(T, A, B);
}

/// (low, high, carry) = (low, high) + x^2 + carry.
[[gnu::always_inline]] inline void add_square(std::uint64_t& low, std::uint64_t& high, std::uint64_t x,
                                              unsigned char& carry) {
    const unsigned __int128 square = static_cast<unsigned __int128>(x) * x;
    __asm__("addb $-1, %2\n\tadc %3, %0\n\tadc %4, %1\n\tsetc %2" // the first addition makes carry the flag
            : "+&r"(low), "+&r"(high), "+&q"(carry)
            : "r"(static_cast<std::uint64_t>(square)), "r"(static_cast<std::uint64_t>(square >> 64))
            : "cc");
}

template <std::size_t n>
std::uint64_t square(limb* T, const limb* A) {
    std::uint64_t mixed[2 * n] = {}; // the products of different limbs
    ColumnSum sum;
    unrolled<2 * n - 2>([&](auto below) __attribute__((always_inline)) {
        constexpr std::size_t k = below + 1, first = k < n ? 0 : k - n + 1;
        unrolled<(k + 1) / 2 - first>([&](auto j) __attribute__((always_inline)) {
            sum.add_product(A[k - first - j], A[first + j]);
        });
        mixed[k] = sum.next();
    });
    unsigned char carry = 0;
    std::uint64_t high = 0;
    unrolled<n>([&](auto i) __attribute__((always_inline)) {
        if constexpr (i != 0) T[2 * i - 1] = high;
        std::uint64_t low = mixed[2 * i] << 1;
        high = mixed[2 * i + 1] << 1 | mixed[2 * i] >> 63;
        if constexpr (i != 0) low |= mixed[2 * i - 1] >> 63;
        add_square(low, high, A[i], carry);
        T[2 * i] = low;
    });
    return high;
}

using Product = std::uint64_t (*)(limb*, const limb*, const limb*);

/// Products in row a - 1, place b - 1, b <= a.
struct Tables {
    Product products[tiny_product][tiny_product];
    Product halves[4][tiny_halves][tiny_halves]; // 1: A ends in half a limb, 2: B does
    std::uint64_t (*squares[tiny_square])(limb*, const limb*);
};

constexpr Tables tables = [] {
    Tables t{};
    unrolled<tiny_product>([&](auto a) { unrolled<a + 1>([&](auto b) { t.products[a][b] = product<a + 1, b + 1>; }); });
    unrolled<tiny_halves>([&](auto a) {
        unrolled<a + 1>([&](auto b) {
            t.halves[1][a][b] = product<a + 1, b + 1, true, false>;
            t.halves[2][a][b] = product<a + 1, b + 1, false, true>;
            t.halves[3][a][b] = product<a + 1, b + 1, true, true>;
        });
    });
    unrolled<tiny_square>([&](auto n) { t.squares[n] = square<n + 1>; });
    return t;
}();

} // namespace

std::uint64_t multiply_tiny(limb* T, const limb* A, std::size_t a, const limb* B, std::size_t b) {
    return tables.products[a - 1][b - 1](T, A, B);
}

std::uint64_t multiply_tiny_halves(limb* T, const limb* A, std::size_t a, const limb* B, std::size_t b, bool half_a,
                                   bool half_b) {
    return tables.halves[half_a + 2 * half_b][a - 1][b - 1](T, A, B);
}

std::uint64_t square_tiny(limb* T, const limb* A, std::size_t n) { return tables.squares[n - 1](T, A); }

} // namespace zvp::MULB
