// Counts of the digits. A byte of a tally counts two neighbouring values, one in each half: 15 vectors fit before the
// halves are summed up.

constexpr std::size_t tally_vectors = 15;

/// counts[value] and counts[value + 1] grow by the halves of the tally.
struct PairCount {
    VecI first, second;

    ZVP_KERNEL_INLINE void add(VecI tally) {
        const VecI low_half = VecI::broadcast(0x0F0F0F0F0F0F0F0F);
        first = first + sum_bytes(tally & low_half);
        second = second + sum_bytes(down<4>(tally) & low_half);
    }
};

ZVP_KERNEL_INLINE std::uint64_t sum_lanes(VecI a) {
    alignas(64) std::int64_t lanes[VecI::lanes];
    a.store(lanes);
    std::uint64_t sum = 0;
    for (const std::int64_t lane : lanes) sum += static_cast<std::uint64_t>(lane);
    return sum;
}

/// Counts the values from `first` on, two for each pair.
template <std::size_t first, std::size_t... pair>
ZVP_KERNEL_INLINE void count_pairs(std::uint64_t* counts, const std::uint8_t* digits, std::size_t vectors,
                                   std::index_sequence<pair...>) {
    const PairMarker markers[]{PairMarker(first + 2 * pair)...};
    PairCount sums[]{((void)pair, PairCount{VecI::broadcast(0), VecI::broadcast(0)})...};
    while (vectors > 0) {
        VecI tallies[]{((void)pair, VecI::broadcast(0))...};
        const std::size_t n = vectors < tally_vectors ? vectors : tally_vectors;
        for (std::size_t i = 0; i < n; ++i, digits += vector_bytes) {
            const VecI values = load_bytes(digits) & VecI::broadcast(0x0F0F0F0F0F0F0F0F);
            ((tallies[pair] = add_bytes(tallies[pair], markers[pair](values))), ...);
        }
        (sums[pair].add(tallies[pair]), ...);
        vectors -= n;
    }
    counts += first;
    ((counts[2 * pair] += sum_lanes(sums[pair].first), counts[2 * pair + 1] += sum_lanes(sums[pair].second)), ...);
}

/// The sets of narrow vectors have 16 registers: the marks and tallies of more than five pairs don't fit. More values are
/// counted in two passes over what the first cache holds.
constexpr std::size_t most_pairs = vector_bytes < 64 ? 5 : 8, cached_vectors = 16 * 1024 / vector_bytes;

template <unsigned values>
void count_digits(std::uint64_t* counts, const std::uint8_t* digits, std::size_t vectors) {
    if constexpr (values / 2 <= most_pairs) {
        count_pairs<0>(counts, digits, vectors, std::make_index_sequence<values / 2>{});
    } else {
        for (; vectors > 0; digits += cached_vectors * vector_bytes) {
            const std::size_t n = vectors < cached_vectors ? vectors : cached_vectors;
            count_pairs<0>(counts, digits, n, std::make_index_sequence<values / 4>{});
            count_pairs<values / 2>(counts, digits, n, std::make_index_sequence<values / 4>{});
            vectors -= n;
        }
    }
}
