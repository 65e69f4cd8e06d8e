// The hash of rows of words. A row is row_vectors vectors of 64-bit limbs; each of its lanes is a chain of its own, which
// steps from row to row by Horner's rule:
//
//     limb      0 .. lanes-1 | lanes .. 2 lanes-1 | ...        row 0, least significant
//     chain     0 .. lanes-1 | lanes .. 2 lanes-1 | ...
//
// The limb of chain i has the weight 2^(64 i) in its row, a row 2^(64 row_limbs) in the array.

constexpr std::size_t row_limbs = row_vectors * VecI::lanes;

/// The chains stay below 2^63: a step makes 2^61 + 2^(row_shift + 3) + 2^61 + 7 of one at the most.
constexpr int row_shift = 64 * row_limbs % hash_bits;
static_assert(row_shift > 0 && row_shift <= 58);

std::uint64_t hash_rows(const std::byte* words, std::size_t rows) {
    VecI chains[row_vectors];
    for (VecI& chain : chains) chain = VecI::broadcast(0);
    while (rows-- > 0) {
        const std::byte* const row = words + rows * row_limbs * 8;
        for (std::size_t i = 0; i < row_vectors; ++i)
            chains[i] = rotate<row_shift>(chains[i]) + fold(load_bytes(row + i * vector_bytes));
    }
    alignas(64) std::int64_t limbs[VecI::lanes];
    join_chains<64>(chains).store(limbs);
    std::uint64_t h = 0;
    for (std::size_t i = VecI::lanes; i-- > 0;) h = append_limb(h, static_cast<std::uint64_t>(limbs[i]));
    return normalize_hash(h);
}
