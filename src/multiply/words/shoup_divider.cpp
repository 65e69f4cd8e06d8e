#include "multiply/words/shoup_divider.h"

#include "app/failure/exceptions.h"
#include "multiply/words/limb_divider.h"
#include "multiply/words/shoup_step.h"

#include <bit>

namespace zvp {

namespace {

template <class Word>
void check_top_word(Word r, Word d, const char* function) {
    if (r >= d) throw InvalidParametersException(function, "Top word is too large.");
}

/// From this length on the division for the limbs' reciprocal pays.
template <class Word>
constexpr std::size_t min_long = 16;

template <class Word>
constexpr std::size_t limbs_of(std::size_t n) {
    return n * sizeof(Word) / sizeof(c64i);
}

/// The divisor of 64-bit limbs with the same quotients: pairs of c32i words are limbs.
const ShoupDivider<c64i>& limb_form(const ShoupDivider<c64i>& D) { return D; }
ShoupDivider<c64i> limb_form(const ShoupDivider<c32i>& D) { return ShoupDivider<c64i>(D.d); }

} // namespace

template <class Word>
ShoupDivider<Word>::ShoupDivider(Word divisor) : d(divisor), negd(static_cast<Word>(-divisor)) {
    if (d >> (word_bits<Word> - 1) != 0) throw InvalidParametersException("ShoupDivider()", "Divisor is too large.");
    if (!(d & (d - 1))) throw InvalidParametersException("ShoupDivider()", "Untested with power-of-two.");
    const DoubleWord<Word> inv = ~DoubleWord<Word>{0} / d;
    inv_lo = static_cast<Word>(inv);
    inv_hi = high_word<Word>(inv);
}

template <class Word>
Word ShoupDivider<Word>::divmod(Word* T, std::size_t n, Word r) const {
    check_top_word(r, d, "divmod()");
    for (; n * sizeof(Word) % sizeof(c64i) != 0 || n < min_long<Word>; --n) {
        if (n == 0) return r;
        T[n - 1] = divide_step(*this, r);
    }
    return static_cast<Word>(divide_limbs(limb_form(*this), T, limbs_of<Word>(n), r));
}

template <class Word>
Word ShoupDivider<Word>::divmod(Word* T, const Word* A, std::size_t n, Word r) const {
    check_top_word(r, d, "divmod(A)");
    for (; n * sizeof(Word) % sizeof(c64i) != 0 || n < min_long<Word>; --n) {
        if (n == 0) return r;
        T[n - 1] = divide_step(*this, r, A[n - 1]);
    }
    return static_cast<Word>(divide_limbs(limb_form(*this), T, A, limbs_of<Word>(n), r));
}

template <class Word>
Word ShoupDivider<Word>::mod(const Word* A, std::size_t n, Word r) const {
    check_top_word(r, d, "mod(A)");
    for (; n * sizeof(Word) % sizeof(c64i) != 0 || n < min_long<Word>; --n) {
        if (n == 0) return r;
        divide_step(*this, r, A[n - 1]);
    }
    return static_cast<Word>(limbs_modulo(limb_form(*this), A, limbs_of<Word>(n), r));
}

template <class Word>
Word ShoupDivider<Word>::powmod(std::uint64_t k) const {
    if (k == 0) return 1;
    const Word base = static_cast<Word>(negd * inv_hi);
    Word x = base;
    for (int bit = std::bit_width(k) - 2; bit >= 0; --bit) {
        x = ConstantFactor<Word>(*this, x).times(x);
        if (k >> bit & 1) divide_step(*this, x);
    }
    return x;
}

template struct ShoupDivider<c32i>;
template struct ShoupDivider<c64i>;

} // namespace zvp
