#include "digits/digest/sha2.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace zvp;

struct Vector {
    std::string message, sha256, sha512;
};

/// The examples that NIST publishes with FIPS 180-4, and the empty message.
const Vector vectors[]{
    {"", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855",
     "cf83e1357eefb8bdf1542850d66d8007d620e4050b5715dc83f4a921d36ce9ce"
     "47d0d13c5d85f2b0ff8318d2877eec2f63b931bd47417a81a538327af927da3e"},
    {"abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad",
     "ddaf35a193617abacc417349ae20413112e6fa4e89a97ea20a9eeee64b55d39a"
     "2192992a274fc1a836ba3c23a3feebbd454d4423643ce80e2a9ac94fa54ca49f"},
    {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
     "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1",
     "204a8fc6dda82f0a0ced7beb8e08a41657c16ef468b228a8279be331a703c335"
     "96fd15c13b1b07f9aa1d3bea57789ca031ad85c7a71dd70354ec631238ca3445"},
    {"abcdefghbcdefghicdefghijdefghijkefghijklfghijklmghijklmnhijklmnoijklmnopjklmnopqklmnopqrlmnopqrsmnopqrstnopqrstu",
     "cf5b16a778af8380036ce59e7b0492370b249b11e8f07a51afac45037afee9d1",
     "8e959b75dae313da8cf4f72814fc143f8f7779c6eb9f7fa17299aeadb6889018"
     "501d289e4900f7e4331b99dec4b5433ac7d329eeb6dd26545e96e55b874be909"},
    {std::string(1'000'000, 'a'), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0",
     "e718483d0ce769644e2e42c7bc15b4638e1f98b13b2044285632a803afa973eb"
     "de0ff244877ea60a4cb0432ce577c31beb009c5c2c49aa2e4eadb217ad8cc09b"},
};

/// The digest of a message that comes in pieces of `piece` bytes.
template <class Sha>
std::string digest(std::string_view message, std::size_t piece) {
    Sha sha;
    for (; message.size() > piece; message.remove_prefix(piece)) sha.update(message.substr(0, piece));
    sha.update(message);
    return to_hexadecimal(sha.finish());
}

TEST(Sha2, PublishedDigests) {
    for (const Vector& vector : vectors) {
        SCOPED_TRACE(vector.message.substr(0, 60));
        EXPECT_EQ(sha256_text(vector.message), vector.sha256);
        EXPECT_EQ(digest<Sha512>(vector.message, 10'000'000), vector.sha512);
    }
}

TEST(Sha2, PiecesAtEveryEdgeOfABlock) {
    for (const std::size_t piece : {1, 3, 63, 64, 65, 127, 128, 129, 1'000}) {
        SCOPED_TRACE(piece);
        EXPECT_EQ(digest<Sha256>(vectors[4].message, piece), vectors[4].sha256);
        EXPECT_EQ(digest<Sha512>(vectors[4].message, piece), vectors[4].sha512);
    }
    // Every length whose padding begins in, or pushes the length into, another block; against one byte at a time.
    for (std::size_t n = 0; n <= 260; ++n) {
        const std::string message(n, static_cast<char>(n));
        for (const std::size_t piece : {n / 2 + 1, n + 1}) {
            EXPECT_EQ(digest<Sha256>(message, piece), digest<Sha256>(message, 1)) << n;
            EXPECT_EQ(digest<Sha512>(message, piece), digest<Sha512>(message, 1)) << n;
        }
    }
}

/// Digests of the lengths 0 to 260 in one: a padding that is wrong at one length shows here. From Python's hashlib.
TEST(Sha2, PaddingOfEveryLength) {
    Sha256 all_256;
    Sha512 all_512;
    for (std::size_t n = 0; n <= 260; ++n) {
        const std::string message(n, static_cast<char>(n));
        all_256.update(digest<Sha256>(message, n + 1));
        all_512.update(digest<Sha512>(message, n + 1));
    }
    EXPECT_EQ(to_hexadecimal(all_256.finish()), "3d07a7ed4ad53337e74eae20087b80c7793c81dbdfb75dc3a335c68b930d2169");
    EXPECT_EQ(to_hexadecimal(all_512.finish()), "5f6552c3d79f81b50699ad0b49ff7c175e91e00aa71a07059e0806fd0fd610b8"
                                                "76cf7be0daccc2333ce656d923d3b3e14e0aa15507bac12f2c2185f428d43d75");
}

} // namespace
