#include "series/families/polynomial_leaf.h"

#include "app/failure/exceptions.h"
#include "digits/hash/word_hash.h"

#include <cstring>

namespace zvp::BinarySplitting {
namespace {

__extension__ using Wide = unsigned __int128;

/// A signed number in the words of a target, two by two: those may lie at any multiple of four bytes.
class Running {
public:
    explicit Running(wtype* words_) : words(words_) {}

    /// this = this * x + c; grows by a limb at most.
    void multiply_add(std::uint64_t x, std::int64_t c) {
        const bool c_positive = c >= 0;
        const std::uint64_t magnitude = c_positive ? static_cast<std::uint64_t>(c) : 0 - static_cast<std::uint64_t>(c);
        if (size == 0) positive = c_positive;
        const bool adds = positive == c_positive;
        std::uint64_t carry = adds ? magnitude : 0, borrow = adds ? 0 : magnitude;
        for (std::size_t i = 0; i < size; ++i) {
            const Wide product = Wide{get(i)} * x + carry;
            const auto low = static_cast<std::uint64_t>(product);
            set(i, low - borrow);
            borrow = low < borrow ? 1 : 0;
            carry = static_cast<std::uint64_t>(product >> 64);
        }
        const bool negative = carry < borrow; // only where nothing stands above
        carry -= borrow;
        if (negative) carry = complement(carry);
        if (carry != 0) set(size++, carry);
        while (size > 0 && get(size - 1) == 0) --size;
    }

    std::size_t size = 0; // limbs, the top one not zero
    bool positive = true;

private:
    std::uint64_t get(std::size_t i) const {
        std::uint64_t limb;
        std::memcpy(&limb, words + 2 * i, sizeof limb);
        return limb;
    }
    void set(std::size_t i, std::uint64_t limb) { std::memcpy(words + 2 * i, &limb, sizeof limb); }

    /// Negates the number with `top` above its limbs; returns the new top.
    std::uint64_t complement(std::uint64_t top) {
        positive = !positive;
        bool carry = true;
        for (std::size_t i = 0; i < size; ++i) {
            const std::uint64_t limb = ~get(i) + (carry ? 1 : 0);
            set(i, limb);
            carry = carry && limb == 0;
        }
        return ~top + (carry ? 1 : 0);
    }

    wtype* words;
};

} // namespace

void set_polynomial(const char* function, ExactNumber& T, const Coefficients& polynomial, std::uint64_t k) {
    if (T.capacity / 2 < polynomial.size()) throw BufferTooSmallException(function, T.capacity / 2, polynomial.size());
    T.T = T.buffer;
    Running value(T.T);
    for (std::size_t i = polynomial.size(); i-- > 0;) value.multiply_add(k, polynomial[i]);
    T.L = 2 * value.size;
    if (T.L > 0 && T.T[T.L - 1] == 0) --T.L;
    T.exp = 0;
    T.sign = value.positive;
    T.hash = hash_words(0, T.T, T.L);
    if (!T.sign) T.hash = hash_negate(T.hash);
}

void negate(ExactNumber& T) {
    T.sign = !T.sign;
    T.hash = hash_negate(T.hash);
}

} // namespace zvp::BinarySplitting
