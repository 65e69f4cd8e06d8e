#include "multiply/fft/fft_length.h"

#include "app/failure/exceptions.h"

#include <algorithm>
#include <array>

namespace zvp {

namespace {

constexpr unsigned none = 0;
constexpr unsigned least_ring_bits = 7; // per point
constexpr unsigned first_octave = 6;

/// The bits per point of the lengths 2^j, 1.25 * 2^j and 1.5 * 2^j: for products, and the most that a ring may have.
struct Octave {
    std::array<unsigned, 3> product;
    std::array<unsigned, 3> ring;
};

constexpr std::array<Octave, 26> octaves{{
    {{21, none, none}, {21, none, none}}, // j = 6
    {{21, none, 20}, {20, none, 20}},
    {{20, 20, 20}, {19, 19, 19}},
    {{19, 19, 19}, {19, 19, 19}},
    {{19, 19, 19}, {18, 18, 18}}, // 10
    {{18, 18, 18}, {18, 17, 17}},
    {{18, 17, 17}, {17, 17, 17}},
    {{17, 17, 17}, {17, 16, 17}},
    {{17, 16, 17}, {16, 16, 16}},
    {{16, 16, 16}, {16, 15, 16}}, // 15
    {{16, 15, 16}, {15, 15, 15}},
    {{15, 15, 15}, {15, 14, 14}},
    {{15, 14, 14}, {14, 14, 14}},
    {{14, 14, 14}, {14, 13, 13}},
    {{14, 13, 13}, {13, 13, 13}}, // 20
    {{13, 13, 13}, {13, 12, 12}},
    {{13, 12, 12}, {12, 12, 12}},
    {{12, 12, 12}, {12, 11, 11}},
    {{12, 11, 11}, {11, 11, 11}},
    {{11, 11, 11}, {11, 10, 10}}, // 25
    {{11, 10, 10}, {10, 10, 10}},
    {{10, 10, 10}, {9, 9, 9}},
    {{9, 9, 9}, {9, 9, 9}},
    {{9, 9, 9}, {8, 8, 8}},
    {{8, 8, 8}, {8, none, none}}, // 30
    {{8, none, none}, {none, none, none}},
}};

constexpr FftLength make_length(std::uint32_t code, unsigned bits_per_point) {
    const unsigned octave = code >> 2;
    FftLength length{code, 1, octave, 0, bits_per_point};
    if ((code & 3) == 1) length.m = 5, length.k = octave - 2;
    if ((code & 3) == 2) length.m = 3, length.k = octave - 1;
    length.L = std::uint64_t{length.m} << length.k;
    return length;
}

constexpr bool smaller_capacity(const FftLength& a, const FftLength& b) {
    return a.capacity_bits() != b.capacity_bits() ? a.capacity_bits() < b.capacity_bits() : a.code < b.code;
}

constexpr std::size_t most_rows = 26 * 3 * 15;

/// Rows by rising capacity; of equal ones that of the smallest length.
struct Rows {
    std::array<FftLength, most_rows> row{};
    std::size_t count = 0;

    constexpr void sort() {
        std::sort(row.begin(), row.begin() + static_cast<std::ptrdiff_t>(count), smaller_capacity);
        const auto same = [](const FftLength& a, const FftLength& b) { return a.capacity_bits() == b.capacity_bits(); };
        count = static_cast<std::size_t>(
            std::unique(row.begin(), row.begin() + static_cast<std::ptrdiff_t>(count), same) - row.begin());
    }
};

/// For products every length stands once, for rings with all bits per point from the least to its most.
constexpr Rows make_rows(bool rings) {
    Rows rows;
    for (std::size_t octave = 0; octave < octaves.size(); ++octave)
        for (unsigned family = 0; family < 3; ++family) {
            const auto code = static_cast<std::uint32_t>(4 * (octave + first_octave) + family);
            const unsigned most = rings ? octaves[octave].ring[family] : octaves[octave].product[family];
            for (unsigned bits = rings ? least_ring_bits : most; bits != none && bits <= most; ++bits)
                rows.row[rows.count++] = make_length(code, bits);
        }
    rows.sort();
    return rows;
}

constexpr Rows product_rows = make_rows(false);
constexpr Rows ring_rows = make_rows(true);

const FftLength* first_of_capacity(std::span<const FftLength> rows, std::uint64_t bits) {
    const auto below = [](const FftLength& row, std::uint64_t wanted) { return row.capacity_bits() < wanted; };
    const auto found = std::lower_bound(rows.begin(), rows.end(), bits, below);
    return found == rows.end() ? nullptr : &*found;
}

} // namespace

FftLength fft_length(std::uint64_t bits) {
    const FftLength* row = first_of_capacity(fft_lengths(), bits);
    if (!row) throw LimitExceededException("fft_length()", "Product is too large.", fft_max_bits, bits);
    return *row;
}

FftLength fft_ring_length(std::uint64_t bits) {
    const FftLength* row = first_of_capacity(fft_ring_lengths(), bits);
    if (!row || row->capacity_bits() != bits)
        throw InvalidParametersException("fft_ring_length()", "Invalid Parameters");
    return *row;
}

std::span<const FftLength> fft_lengths() { return {product_rows.row.data(), product_rows.count}; }

std::span<const FftLength> fft_ring_lengths() { return {ring_rows.row.data(), ring_rows.count}; }

} // namespace zvp
