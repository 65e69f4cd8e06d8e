#pragma once
// SHA-256 and SHA-512 (FIPS 180-4, Secure Hash Standard, 2015, sections 5.1, 6.2, 6.4).

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace zvp {

/// The digest of a message that comes in pieces of any size. `Word` is the algorithm's word: 32 bits for SHA-256, 64 for
/// SHA-512.
template <class Word>
class Sha2 {
public:
    static constexpr std::size_t digest_bytes = 8 * sizeof(Word);
    static constexpr std::size_t block_bytes = 16 * sizeof(Word);
    using Digest = std::array<std::uint8_t, digest_bytes>;

    Sha2();

    void update(const void* data, std::size_t bytes);
    void update(std::string_view text) { update(text.data(), text.size()); }

    /// The digest of all bytes so far; the object is of no use afterwards.
    Digest finish();

private:
    void compress(const std::uint8_t* block);

    std::array<Word, 8> state;
    std::array<std::uint8_t, block_bytes> pending; // the front of the next block
    std::size_t pending_bytes = 0;
    std::uint64_t message_bytes = 0;
};

extern template class Sha2<std::uint32_t>;
extern template class Sha2<std::uint64_t>;

using Sha256 = Sha2<std::uint32_t>;
using Sha512 = Sha2<std::uint64_t>;

/// Two lower-case hexadecimal digits for each byte.
std::string to_hexadecimal(std::span<const std::uint8_t> bytes);

/// The SHA-256 of a text, as hexadecimal digits.
std::string sha256_text(std::string_view text);

} // namespace zvp
