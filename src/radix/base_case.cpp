#include "radix/base_case.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace zvp {

namespace {

/// Words kept beyond the output: what the digit behind it needs, with two words for the cuts.
constexpr std::size_t guard_words = 4;

__extension__ using DoubleLimb = unsigned __int128;

/// The top of a fraction in limbs of two words.
class LeafWindow {
public:
    /// `words` words below `end`.
    LeafWindow(const std::uint32_t* end, std::size_t words) : first(limit - (words + 1) / 2) {
        const std::size_t pairs = words / 2;
        if (words % 2 != 0) limbs[first] = std::uint64_t{*(end - words)} << 32;
        std::memcpy(limbs.data() + limit - pairs, end - 2 * pairs, pairs * sizeof(std::uint64_t));
    }

    /// *this = the fraction of *this * x; returns the integer part.
    std::uint64_t multiply(std::uint64_t x) {
        std::uint64_t carry = 0;
        for (std::size_t i = first; i < limit; ++i) {
            const DoubleLimb product = DoubleLimb{limbs[i]} * x + carry;
            limbs[i] = static_cast<std::uint64_t>(product);
            carry = static_cast<std::uint64_t>(product >> 64);
        }
        return carry;
    }

    /// Keeps at most the top `words` words, rounded up to limbs.
    void keep(std::size_t words) { first = std::max(first, limit - std::min(limit, (words + 1) / 2)); }

private:
    static constexpr std::size_t limit = (max_leaf_words + guard_words + 1) / 2;

    std::array<std::uint64_t, limit> limbs; // the top limb last
    std::size_t first;
};

} // namespace

std::uint32_t convert_leaf(std::uint32_t R, std::uint32_t* end, std::size_t n, const std::uint32_t* fraction_end,
                           std::size_t length) {
    LeafWindow window(fraction_end, std::min(n + guard_words, length));
    if (n % 2 != 0) {
        *--end = static_cast<std::uint32_t>(window.multiply(R));
        --n;
    }
    const std::uint64_t square = std::uint64_t{R} * R;
    for (; n > 0; n -= 2) {
        const std::uint64_t pair = window.multiply(square);
        *--end = static_cast<std::uint32_t>(pair / R);
        *--end = static_cast<std::uint32_t>(pair % R);
        window.keep(n - 2 + guard_words);
    }
    return static_cast<std::uint32_t>(window.multiply(R));
}

} // namespace zvp
