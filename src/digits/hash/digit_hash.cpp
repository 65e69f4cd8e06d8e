#include "digits/hash/digit_hash.h"

#include "app/failure/exceptions.h"
#include "digits/hash/digit_kernels.h"

#include <cstring>

namespace zvp {

namespace {

/// The value of 8 digits: neighbours are joined in the lanes of one 64-bit word, the first digit being in its lowest
/// byte.
template <unsigned radix>
std::uint64_t value_of_eight(const std::uint8_t* digits) {
    constexpr std::uint64_t bytes = 0x00FF00FF00FF00FF, shorts = 0x0000FFFF0000FFFF, words = 0x00000000FFFFFFFF;
    std::uint64_t v;
    std::memcpy(&v, digits, sizeof v);
    v &= 0x0F0F0F0F0F0F0F0F;
    v = (v & bytes) * radix + (v >> 8 & bytes);
    v = (v & shorts) * (radix * radix) + (v >> 16 & shorts);
    return (v & words) * (radix * radix * radix * radix) + (v >> 32);
}

template <unsigned radix>
std::uint64_t hash_rest(std::uint64_t h, const std::uint8_t* digits, std::size_t n) {
    constexpr std::uint64_t eighth_power = pow_mod(radix, 8);
    for (; n >= 8; n -= 8, digits += 8) h = reduce_hash(HashProduct{h} * eighth_power + value_of_eight<radix>(digits));
    for (; n > 0; --n, ++digits) h = reduce_hash(HashProduct{h} * radix + (*digits & 15));
    return h;
}

} // namespace

std::uint64_t hash_digits(std::uint64_t h, const std::uint8_t* digits, std::size_t n, unsigned radix) {
    if (radix != 10 && radix != 16) throw InvalidParametersException("hash_digits()", "Invalid Radix.");
    h = normalize_hash(h);
    const DigitKernels& kernels = digit_kernels(platform::active_kernel_set());
    const std::size_t vectors = n / kernels.vector_digits, done = vectors * kernels.vector_digits;
    if (vectors > 0) h = (radix == 10 ? kernels.hash_decimal : kernels.hash_hexadecimal)(h, digits, vectors);
    digits += done;
    n -= done;
    return radix == 10 ? hash_rest<10>(h, digits, n) : hash_rest<16>(h, digits, n);
}

} // namespace zvp
