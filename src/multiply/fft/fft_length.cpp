#include "multiply/fft/fft_length.h"

#include "app/failure/exceptions.h"

#include <algorithm>
#include <array>
#include <vector>

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

template <class Visit>
void for_each_length(Visit visit) {
    for (std::size_t octave = 0; octave < octaves.size(); ++octave)
        for (unsigned family = 0; family < 3; ++family) {
            if (octaves[octave].product[family] == none) continue;
            const auto code = static_cast<std::uint32_t>(4 * (octave + first_octave) + family);
            visit(decode_fft_length(code), octaves[octave].product[family], octaves[octave].ring[family]);
        }
}

bool smaller_capacity(const FftLength& a, const FftLength& b) { return a.capacity_bits() < b.capacity_bits(); }

/// The table for products: one row for each length.
std::vector<FftLength> make_lengths() {
    std::vector<FftLength> rows;
    for_each_length([&rows](FftLength length, unsigned product, unsigned) {
        length.bits_per_point = product;
        rows.push_back(length);
    });
    std::sort(rows.begin(), rows.end(), smaller_capacity);
    return rows;
}

/// The table for rings: every capacity once, by the smallest length that has it.
std::vector<FftLength> make_ring_lengths() {
    std::vector<FftLength> rows;
    for_each_length([&rows](FftLength length, unsigned, unsigned most) {
        for (unsigned bits = least_ring_bits; bits <= most; ++bits) {
            length.bits_per_point = bits;
            rows.push_back(length);
        }
    });
    std::stable_sort(rows.begin(), rows.end(), smaller_capacity);
    const auto same = [](const FftLength& a, const FftLength& b) { return a.capacity_bits() == b.capacity_bits(); };
    rows.erase(std::unique(rows.begin(), rows.end(), same), rows.end());
    return rows;
}

const FftLength* first_of_capacity(std::span<const FftLength> rows, std::uint64_t bits) {
    const auto below = [](const FftLength& row, std::uint64_t wanted) { return row.capacity_bits() < wanted; };
    const auto found = std::lower_bound(rows.begin(), rows.end(), bits, below);
    return found == rows.end() ? nullptr : &*found;
}

} // namespace

FftLength decode_fft_length(std::uint32_t code) {
    FftLength length;
    length.code = code;
    switch (code & 3) {
    case 0: length.m = 1, length.k = code >> 2; break;
    case 1: length.m = 5, length.k = (code >> 2) - 2; break;
    case 2: length.m = 3, length.k = (code >> 2) - 1; break;
    default: length.m = 7, length.k = (code >> 2) - 2; break;
    }
    length.L = std::uint64_t{length.m} << length.k;
    return length;
}

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

std::span<const FftLength> fft_lengths() {
    static const std::vector<FftLength> rows = make_lengths();
    return rows;
}

std::span<const FftLength> fft_ring_lengths() {
    static const std::vector<FftLength> rows = make_ring_lengths();
    return rows;
}

} // namespace zvp
