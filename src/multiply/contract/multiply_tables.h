#pragma once
// The root tables of all algorithms of a session: sized first for everything that will be multiplied, then built once in
// one block of memory, then read by all tasks.
//
// An algorithm's ensure_tables() asks; the session allocates bytes() at a multiple of table_alignment and calls place().

#include "multiply/fft/fft_tables.h"
#include "parallel/memory/dry_run.h"

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <tuple>

namespace zvp {

inline constexpr std::size_t table_alignment = 64;

/// The tables of one algorithm or transform: a header and a payload behind it.
template <class Set>
concept MultiplyTableSet = requires(Set& set, const Set& asked, std::uint64_t bits, std::byte* memory) {
    set.ensure(bits);                                  // raises the wanted size; touches no memory
    { asked.bytes() } -> std::same_as<std::uint64_t>;  // header and payload; 0 if never asked for anything
    { set.place(memory) } -> std::same_as<std::byte*>; // builds both from `memory` on; returns their end
};

/// Table sets in the order in which they lie in memory, each from a multiple of table_alignment on.
template <MultiplyTableSet... Sets>
class MultiplyTableSets {
public:
    static constexpr std::uint64_t unbounded = std::numeric_limits<std::uint64_t>::max();

    MultiplyTableSets() = default;
    MultiplyTableSets(const MultiplyTableSets&) = delete;
    MultiplyTableSets& operator=(const MultiplyTableSets&) = delete;

    /// The set that a transform of `capacity_bits` reads, to be asked for what it needs. Until the next place() no
    /// transform passes check_buffers().
    template <class Set>
    Set& grow(std::uint64_t capacity_bits) {
        wanted = std::max(wanted, capacity_bits);
        capacity = 0;
        return std::get<Set>(sets);
    }

    template <class Set>
    const Set& get() const {
        return std::get<Set>(sets);
    }

    /// The storage that place() needs.
    std::uint64_t bytes() const {
        return std::apply([](const Sets&... set) { return (std::uint64_t{0} + ... + padded(set.bytes())); }, sets);
    }

    /// Builds all sets at `memory`, a multiple of table_alignment; returns their end. Without a wish it does nothing.
    std::byte* place(std::byte* memory) {
        std::apply([&](Sets&... set) { ((memory = place_one(set, memory)), ...); }, sets);
        if (wanted > 0) capacity = wanted;
        return memory;
    }

    /// The largest transform, in bits of product, for products with their scratch at M. A dry run goes before the tables
    /// are built: it may take what was asked for.
    std::uint64_t limit(const std::byte* M) const { return is_dry(M) && wanted > 0 ? wanted : capacity; }

    /// The largest transform, in bits of product, that the tables were built for: all ones while nothing was asked of
    /// them, 0 between asking and building.
    std::uint64_t capacity = unbounded;

private:
    static std::uint64_t padded(std::uint64_t bytes) { return (bytes + table_alignment - 1) & ~(table_alignment - 1); }

    template <class Set>
    static std::byte* place_one(Set& set, std::byte* memory) {
        const std::uint64_t bytes = set.bytes();
        if (bytes > 0) set.place(memory);
        return memory + padded(bytes);
    }

    std::uint64_t wanted = 0;
    std::tuple<Sets...> sets;
};

/// The sets of this program. A set joins by its name between the brackets; the order is that in memory.
class MultiplyTables final : public MultiplyTableSets<FftTables> {};

} // namespace zvp
