// Chains of residues modulo 2^61 - 1 in the lanes of a vector. A multiplication by a power of two is a rotation of 61 bits.

constexpr std::size_t row_vectors = 4; // enough chains to hide the latency of one step

/// a * 2^shift modulo p, below 2^61 + 2^(shift + 3).
template <int shift>
ZVP_KERNEL_INLINE VecI rotate(VecI a) {
    constexpr int kept = hash_bits - shift;
    return up<shift>(a & VecI::broadcast((std::int64_t{1} << kept) - 1)) + down<kept>(a);
}

/// a modulo p, below 2^61 + 7.
ZVP_KERNEL_INLINE VecI fold(VecI a) {
    return (a & VecI::broadcast(static_cast<std::int64_t>(hash_modulus))) + down<hash_bits>(a);
}

/// One vector for all of a row's: vector i has the weight 2^(bits * lanes * i), `bits` being the weight of a lane.
template <int bits>
ZVP_KERNEL_INLINE VecI join_chains(const VecI (&chains)[row_vectors]) {
    constexpr int shift = bits * static_cast<int>(VecI::lanes) % static_cast<int>(hash_bits);
    VecI joined = chains[row_vectors - 1];
    for (std::size_t i = row_vectors - 1; i-- > 0;) joined = rotate<shift>(joined) + fold(chains[i]);
    return joined;
}
