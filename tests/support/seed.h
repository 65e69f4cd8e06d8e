#pragma once
// Random operands: from a fixed seed that ZORVANE_TEST_SEED changes. Tests print it on failure with
// SCOPED_TRACE.

#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>

namespace test {

inline std::uint64_t seed() {
    const char* text = std::getenv("ZORVANE_TEST_SEED");
    return text ? std::strtoull(text, nullptr, 10) : 20'261'122;
}

inline std::string seed_trace() { return "ZORVANE_TEST_SEED=" + std::to_string(seed()); }

/// A number of up to `bits` bits, every length as likely as the others.
inline std::uint64_t random_up_to_bits(std::mt19937_64& random, unsigned bits) {
    const unsigned length = static_cast<unsigned>(random() % (bits + 1));
    return length == 0 ? 0 : random() >> (64 - length);
}

} // namespace test
