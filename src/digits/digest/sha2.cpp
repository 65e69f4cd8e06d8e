#include "digits/digest/sha2.h"

#include "digits/digest/sha2_constants.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace zvp {

namespace {

/// Rotations and shifts of the functions that FIPS 180-4 names by Greek letters (sections 4.1.2, 4.1.3).
template <class Word>
struct Variant;

template <>
struct Variant<std::uint32_t> {
    static constexpr std::size_t rounds = 64;
    static constexpr int big_0[3]{2, 13, 22}, big_1[3]{6, 11, 25};     // rotations
    static constexpr int small_0[3]{7, 18, 3}, small_1[3]{17, 19, 10}; // two rotations and a shift
};

template <>
struct Variant<std::uint64_t> {
    static constexpr std::size_t rounds = 80;
    static constexpr int big_0[3]{28, 34, 39}, big_1[3]{14, 18, 41};
    static constexpr int small_0[3]{1, 8, 7}, small_1[3]{19, 61, 6};
};

template <class Word>
Word big_sigma(Word x, const int (&by)[3]) {
    return std::rotr(x, by[0]) ^ std::rotr(x, by[1]) ^ std::rotr(x, by[2]);
}

template <class Word>
Word small_sigma(Word x, const int (&by)[3]) {
    return std::rotr(x, by[0]) ^ std::rotr(x, by[1]) ^ x >> by[2];
}

template <class Word>
Word constant(std::uint64_t value) {
    return static_cast<Word>(value >> (64 - 8 * sizeof(Word)));
}

template <class Word>
Word load_big_endian(const std::uint8_t* bytes) {
    Word word = 0;
    for (std::size_t i = 0; i < sizeof word; ++i) word = word << 8 | bytes[i];
    return word;
}

template <class Word>
void store_big_endian(std::uint8_t* bytes, Word word) {
    for (std::size_t i = sizeof word; i-- > 0; word >>= 8) bytes[i] = static_cast<std::uint8_t>(word);
}

template <class Word>
auto message_schedule(const std::uint8_t* block) {
    using V = Variant<Word>;
    std::array<Word, V::rounds> w;
    for (std::size_t t = 0; t < 16; ++t) w[t] = load_big_endian<Word>(block + t * sizeof(Word));
    for (std::size_t t = 16; t < V::rounds; ++t)
        w[t] = small_sigma(w[t - 2], V::small_1) + w[t - 7] + small_sigma(w[t - 15], V::small_0) + w[t - 16];
    return w;
}

} // namespace

template <class Word>
Sha2<Word>::Sha2() {
    for (std::size_t i = 0; i < state.size(); ++i) state[i] = constant<Word>(sha2::initial_state[i]);
}

template <class Word>
void Sha2<Word>::compress(const std::uint8_t* block) {
    using V = Variant<Word>;
    const auto schedule = message_schedule<Word>(block);
    auto [a, b, c, d, e, f, g, h] = state;
    for (std::size_t t = 0; t < V::rounds; ++t) {
        const Word choice = (e & f) ^ (~e & g), majority = (a & b) ^ (a & c) ^ (b & c);
        const Word first = h + big_sigma(e, V::big_1) + choice + constant<Word>(sha2::round_constants[t]) + schedule[t];
        const Word second = big_sigma(a, V::big_0) + majority;
        h = g, g = f, f = e, e = d + first;
        d = c, c = b, b = a, a = first + second;
    }
    const Word round[8]{a, b, c, d, e, f, g, h};
    for (std::size_t i = 0; i < state.size(); ++i) state[i] += round[i];
}

template <class Word>
void Sha2<Word>::update(const void* data, std::size_t bytes) {
    auto* next = static_cast<const std::uint8_t*>(data);
    message_bytes += bytes;
    while (bytes > 0) {
        if (pending_bytes == 0 && bytes >= block_bytes) {
            compress(next);
            next += block_bytes;
            bytes -= block_bytes;
            continue;
        }
        const std::size_t taken = std::min(bytes, block_bytes - pending_bytes);
        std::memcpy(pending.data() + pending_bytes, next, taken);
        next += taken;
        bytes -= taken;
        pending_bytes += taken;
        if (pending_bytes == block_bytes) {
            compress(pending.data());
            pending_bytes = 0;
        }
    }
}

template <class Word>
typename Sha2<Word>::Digest Sha2<Word>::finish() {
    // The length in bits takes two words at the end of the last block; of its upper bits all but three are 0.
    constexpr std::size_t length_at = block_bytes - 2 * sizeof(Word);
    const std::uint64_t length = message_bytes;
    static constexpr std::uint8_t padding[block_bytes]{0x80};
    update(padding, 1 + (block_bytes + length_at - 1 - pending_bytes) % block_bytes);
    std::uint8_t tail[2 * sizeof(Word)]{};
    store_big_endian(tail + sizeof tail - 8, length << 3);
    if constexpr (sizeof tail > 8) tail[sizeof tail - 9] = static_cast<std::uint8_t>(length >> 61);
    update(tail, sizeof tail);
    Digest digest;
    for (std::size_t i = 0; i < state.size(); ++i) store_big_endian(digest.data() + i * sizeof(Word), state[i]);
    return digest;
}

template class Sha2<std::uint32_t>;
template class Sha2<std::uint64_t>;

std::string to_hexadecimal(std::span<const std::uint8_t> bytes) {
    static constexpr char digits[] = "0123456789abcdef";
    std::string text;
    text.reserve(2 * bytes.size());
    for (const std::uint8_t byte : bytes) {
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

std::string sha256_text(std::string_view text) {
    Sha256 sha;
    sha.update(text);
    return to_hexadecimal(sha.finish());
}

} // namespace zvp
