#pragma once
// Products by the transform beside GMP's, and operands that are hard for it.

#include "multiply/fft/fft.h"
#include "support/seed.h"

#include <gmp.h>
#include <gtest/gtest.h>

#include <bit>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace test {

/// Bytes aligned to a cache line, between guards.
class GuardedBytes {
public:
    explicit GuardedBytes(std::size_t bytes_) : bytes(bytes_), storage((bytes + 3 * line) / line, Line{}) {
        std::memset(storage.data(), guard, storage.size() * line);
    }
    std::byte* data() { return storage.front().bytes + line; }
    bool guards_stand() const {
        const auto stands = [](const std::byte* p, std::size_t n) {
            for (std::size_t i = 0; i < n; ++i)
                if (p[i] != std::byte{guard}) return false;
            return true;
        };
        const std::byte* const all = storage.front().bytes;
        return stands(all, line) && stands(all + line + bytes, storage.size() * line - line - bytes);
    }

private:
    static constexpr std::size_t line = 64;
    static constexpr unsigned char guard = 0xA7;
    struct alignas(line) Line {
        std::byte bytes[line];
    };
    std::size_t bytes;
    std::vector<Line> storage;
};

/// The tables of one kernel set for all lengths of at most `points`.
class Tables {
public:
    Tables(zvp::platform::KernelSet set, std::uint64_t points) : tables(set), memory(0) {
        for (const zvp::FftLength& row : zvp::fft_lengths())
            if (row.L <= points) tables.ensure(row.capacity_bits());
        for (const zvp::FftLength& row : zvp::fft_ring_lengths())
            if (row.L <= points) tables.ensure_rings(row.capacity_bits());
        memory = GuardedBytes(tables.bytes());
        EXPECT_EQ(tables.place(memory.data()), memory.data() + tables.bytes());
        EXPECT_TRUE(memory.guards_stand());
    }

    zvp::FftTables tables;

private:
    GuardedBytes memory;
};

inline std::vector<zvp::platform::KernelSet> kernel_sets() {
    std::vector<zvp::platform::KernelSet> sets;
    for (const auto set : zvp::platform::all_kernel_sets)
        if (zvp::platform::kernel_set_supported(set)) sets.push_back(set);
    return sets;
}

inline std::string name_of(zvp::platform::KernelSet set, const zvp::FftLength& length) {
    return std::string(zvp::platform::kernel_set_name(set)) + ", L = " + std::to_string(length.m) + " * 2^"
           + std::to_string(length.k) + ", " + std::to_string(length.bits_per_point) + " bits per point";
}

/// A non-negative integer of GMP.
class Natural {
public:
    Natural() { mpz_init(z); }
    explicit Natural(const std::vector<std::uint32_t>& words) {
        mpz_init(z);
        mpz_import(z, words.size(), -1, 4, 0, 0, words.data());
    }
    ~Natural() { mpz_clear(z); }
    Natural(const Natural&) = delete;
    Natural& operator=(const Natural&) = delete;

    std::vector<std::uint32_t> words(std::size_t n) const {
        std::vector<std::uint32_t> out(std::max(n, (mpz_sizeinbase(z, 2) + 31) / 32));
        mpz_export(out.data(), nullptr, -1, 4, 0, 0, z);
        return out;
    }

    mpz_t z;
};

/// A * B modulo 2^(32 n) + 1: n + 1 words.
inline std::vector<std::uint32_t> ring_product(const std::vector<std::uint32_t>& A, const std::vector<std::uint32_t>& B,
                                               std::size_t n) {
    const Natural a(A), b(B);
    Natural modulus, product;
    mpz_setbit(modulus.z, 32 * n);
    mpz_add_ui(modulus.z, modulus.z, 1);
    mpz_mul(product.z, a.z, b.z);
    mpz_mod(product.z, product.z, modulus.z);
    return product.words(n + 1);
}

/// Besides the usual: points that are as large as balanced digits get, of one sign, or of signs that alternate or are
/// random; points of all ones beside points of zeros; and points of one large size whose signs follow some bits of their
/// place, so that all levels of a transform round all of them alike.
enum class Pattern { random, runs, ones, alternating, largest, largest_alternating, largest_random, resonant };
inline constexpr Pattern all_patterns[]{Pattern::random,         Pattern::runs,    Pattern::ones,
                                        Pattern::alternating,    Pattern::largest, Pattern::largest_alternating,
                                        Pattern::largest_random, Pattern::resonant};

/// The balanced digit of b bits at point j of a resonant pattern, which `draw` chooses.
inline std::int64_t resonant_digit(std::uint64_t draw, std::uint64_t j, unsigned b) {
    const std::uint64_t top = std::uint64_t{1} << (b - 1), mask = draw >> 32 & draw >> 40;
    const auto size = static_cast<std::int64_t>(top - 1 - draw % (top / 4));
    return std::popcount(j & mask) % 2 == 0 ? size : -size;
}

/// The field of b bits at point j of a pattern. A field of 2^(b-1) - 1 is a large digit; so is, negative, 2^(b-1).
inline std::uint64_t field_of(std::mt19937_64& random, Pattern pattern, std::uint64_t draw, std::uint64_t j,
                              unsigned b) {
    const std::uint64_t top = std::uint64_t{1} << (b - 1);
    switch (pattern) {
    case Pattern::resonant: {
        const bool borrow = j > 0 && resonant_digit(draw, j - 1, b) < 0;
        return static_cast<std::uint64_t>(resonant_digit(draw, j, b) - borrow) & (2 * top - 1);
    }
    case Pattern::ones: return 2 * top - 1;
    case Pattern::alternating: return j % 2 ? 0 : 2 * top - 1;
    case Pattern::largest: return top - 1;
    case Pattern::largest_alternating: return j % 2 ? top - 1 : top;
    case Pattern::largest_random: return top - random() % 2;
    default: return random() & (2 * top - 1);
    }
}

/// n words of fields of b bits.
inline std::vector<std::uint32_t> operand(std::mt19937_64& random, std::size_t n, Pattern pattern, unsigned b) {
    std::vector<std::uint32_t> words(n);
    if (pattern == Pattern::runs) {
        for (std::size_t i = 0; i < n;) {
            const std::uint64_t kind = random() % 3;
            for (const std::size_t end = std::min<std::size_t>(n, i + 1 + random() % 40); i < end; ++i)
                words[i] = kind == 0 ? static_cast<std::uint32_t>(random()) : kind == 1 ? 0 : ~0U;
        }
        return words;
    }
    const std::uint64_t draw = random();
    for (std::size_t j = 0; j * b < 32 * n; ++j) {
        const std::size_t bit = j * b;
        const std::uint64_t field = field_of(random, pattern, draw, j, b) << bit % 32;
        words[bit / 32] |= static_cast<std::uint32_t>(field);
        if (bit / 32 + 1 < n) words[bit / 32 + 1] |= static_cast<std::uint32_t>(field >> 32);
    }
    return words;
}

} // namespace test
