#pragma once
// Transforms with their memory between guard bytes.

#include "multiply/tables/algorithm_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace test {

using zvp::Transform;

/// An area aligned to 64 bytes whose neighbours are known.
class Area {
public:
    explicit Area(std::size_t bytes_) : bytes(bytes_), storage(bytes_ + 3 * guard, pattern) {
        const auto address = reinterpret_cast<std::uintptr_t>(storage.data()) + guard;
        data = storage.data() + guard + (guard - address % guard) % guard;
    }

    operator std::byte*() { return data; }

    bool intact() const {
        const auto same = [](std::byte x) { return x == pattern; };
        return std::all_of(storage.data(), static_cast<const std::byte*>(data), same)
               && std::all_of(static_cast<const std::byte*>(data + bytes), storage.data() + storage.size(), same);
    }

    bool untouched() const {
        return std::all_of(storage.begin(), storage.end(), [](std::byte x) { return x == pattern; });
    }

    const std::size_t bytes;

private:
    static constexpr std::size_t guard = 64;
    static constexpr std::byte pattern{0xA5};
    std::vector<std::byte> storage;
    std::byte* data;
};

/// The transform that the table holds for products of `length` words, and areas for it.
template <class Word>
struct WordBench {
    WordBench(const zvp::MultiplyParameters& pars, std::uint64_t length)
        : tr(zvp::algorithm_table<Word>().get_algorithm(length).params(object, length, pars.tds)),
          M(tr.scratch_bytes),
          Xa(tr.transform_bytes),
          Xb(tr.transform_bytes) {}

    void expect_intact() const { EXPECT_TRUE(M.intact() && Xa.intact() && Xb.intact()); }

    std::size_t words() const { return tr.capacity_bits / zvp::word_bits<Word>; }
    bool folds() const { return std::string(tr.name()) != "BKT"; }
    bool drops_carries() const { return std::string(tr.name()) == "HNT"; }

    zvp::TransformObject object;
    const Transform& tr;
    Area M, Xa, Xb;
};

} // namespace test
