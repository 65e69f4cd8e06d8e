#pragma once
// Products of a few 64-bit limbs on the stack, for the leaves of series.

#include "app/failure/exceptions.h"
#include "digits/hash/hash_field.h"
#include "numbers/basic_int.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zvp::BinarySplitting {

/// A natural number of at most `room` limbs, low limb first.
template <std::size_t room>
class ShortLimbs {
public:
    /// The zero limbs on top, if any, count.
    explicit ShortLimbs(std::uint64_t value) : size(1) { limbs[0] = value; }

    explicit ShortLimbs(unsigned __int128 value) : size(2) {
        limbs[0] = static_cast<std::uint64_t>(value);
        limbs[1] = static_cast<std::uint64_t>(value >> 64);
    }

    /// Grows by a limb.
    ShortLimbs& operator*=(std::uint64_t x) {
        std::uint64_t carry = 0;
        for (std::size_t i = 0; i < size; ++i) {
            const unsigned __int128 product = static_cast<unsigned __int128>(limbs[i]) * x + carry;
            limbs[i] = static_cast<std::uint64_t>(product);
            carry = static_cast<std::uint64_t>(product >> 64);
        }
        limbs[size++] = carry;
        return *this;
    }

    /// Grows by two limbs.
    ShortLimbs& operator*=(unsigned __int128 x) {
        ShortLimbs high = *this;
        *this *= static_cast<std::uint64_t>(x);
        high *= static_cast<std::uint64_t>(x >> 64);
        std::uint64_t carry = 0;
        for (std::size_t i = 0; i < high.size; ++i) {
            const std::uint64_t below = i + 1 < size ? limbs[i + 1] : 0;
            const unsigned __int128 sum = static_cast<unsigned __int128>(below) + high.limbs[i] + carry;
            limbs[i + 1] = static_cast<std::uint64_t>(sum);
            carry = static_cast<std::uint64_t>(sum >> 64);
        }
        size = high.size + 1;
        return *this;
    }

    /// T = this, without zero words on top, with its residue. Throws BufferTooSmallException in the name of `function`
    /// unless T has `words` words, which the number fits.
    void store(const char* function, std::size_t words, BasicInt<wtype>& T) const {
        if (T.capacity < words) throw BufferTooSmallException(function, T.capacity, words);
        std::size_t top = size;
        while (top > 0 && limbs[top - 1] == 0) --top;
        T.hash = 0;
        for (std::size_t i = top; i-- > 0;) T.hash = append_limb(T.hash, limbs[i]);
        T.hash = normalize_hash(T.hash);
        T.L = top == 0 ? 0 : 2 * top - (limbs[top - 1] >> 32 == 0);
        std::memcpy(T.T, limbs, T.L * sizeof(wtype));
    }

private:
    std::uint64_t limbs[room];
    std::size_t size;
};

} // namespace zvp::BinarySplitting
