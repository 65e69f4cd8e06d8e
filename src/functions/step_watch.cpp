#include "functions/step_watch.h"

#include "app/failure/exceptions.h"
#include "digits/hash/word_hash.h"

#include <algorithm>

namespace zvp {

namespace {

/// A column of a schoolbook product, with its carries.
class DoubleWordSum {
public:
    void add(wtype a, wtype b) { sum += BigFloat::DWord{a} * b; }
    wtype take_word() {
        const auto word = static_cast<wtype>(sum);
        sum >>= BigFloat::w;
        return word;
    }

private:
    __extension__ unsigned __int128 sum = 0;
};

constexpr auto guards = static_cast<std::int64_t>(BigFloat::extra_precision);

} // namespace

StepWatch::StepWatch(const char* function_, const TransformHelper& helper_, bool on_)
    : on(arithmetic_is_watched && on_ && !is_dry(helper_.M())),
      sees_products(on && !helper_.transform().product_words(helper_.M(), 1).empty()),
      function(function_),
      helper(helper_) {}

WatchedFactor StepWatch::factor(const BigFloat& X, std::size_t words) const {
    const std::size_t L = std::min(X.L, words);
    const std::int64_t exp = X.top() - static_cast<std::int64_t>(L);
    if (on && X.watched) return {exp, L, shift_words(X.hash_of_top(L, helper.pars()), exp)};
    return {exp, L, residue(X, exp)};
}

WatchedFactor StepWatch::factor(const BigFloat& X, std::size_t words, std::uint64_t known) const {
    const std::size_t L = std::min(X.L, words);
    const std::int64_t exp = X.top() - static_cast<std::int64_t>(L);
    return {exp, L, subtract_mod(known, residue(X, lowest, exp))};
}

WatchedFactor StepWatch::seen_factor(const BigFloat& X, std::size_t words) const {
    return sees_products ? factor(X, words) : factor(X, words, 0);
}

std::uint64_t StepWatch::residue(const BigFloat& X, std::int64_t from, std::int64_t to) const {
    if (!on || X.L == 0) return 0;
    const std::int64_t low = std::max(from, X.exp), high = std::min(to, X.top());
    if (low >= high) return 0;
    const ParallelContext& ctx = helper.pars();
    const std::uint64_t h =
        hash_words_parallel(0, X.T + (low - X.exp), static_cast<std::size_t>(high - low), ctx.framework, ctx.tds);
    return shift_words(h, low);
}

WatchedProduct StepWatch::product(const BigFloat& T, const WatchedFactor& a, const WatchedFactor& b, std::int64_t ie,
                                  std::int64_t te) const {
    WatchedProduct product;
    if (!on) return product;
    product.exp = a.exp + b.exp;
    product.length = a.L + b.L;
    const std::int64_t top = product.exp + static_cast<std::int64_t>(product.length);
    const std::int64_t end = std::min(te, top);
    if (!sees_products || end - product.exp < static_cast<std::int64_t>(std::max(a.L, b.L))) {
        product.window = made(T);
        return product;
    }
    product.total = shift_words(mul_mod(a.residue, b.residue), -product.exp);
    if (ie - guards <= product.exp && te >= top) { // the number is the product
        product.window = made(T);
        if (shift_words(product.window, -product.exp) != product.total) fail();
        return product;
    }

    const auto words = helper.transform().product_words(helper.M(), product.length);
    product.C = words.size();
    const std::size_t folded = product.length - std::min(product.length, product.C);
    const auto s = std::max(static_cast<std::size_t>(std::max<std::int64_t>(ie - guards - product.exp, 0)), folded);
    const auto e = static_cast<std::size_t>(end - product.exp);
    const ParallelContext& ctx = helper.pars();
    const auto hash = [&](std::size_t from, std::size_t to) {
        return hash_words_parallel(0, words.data() + from, to - from, ctx.framework, ctx.tds);
    };
    const std::uint64_t inside = hash(s, e);
    product.above = hash(e, product.C);
    product.window = shift_words(inside, product.exp + static_cast<std::int64_t>(s));
    product.folded = add_mod(add_mod(hash(0, s), shift_words(inside, static_cast<std::int64_t>(s))),
                             shift_words(product.above, static_cast<std::int64_t>(e)));
    if (folded == 0 && product.folded != product.total) fail();
    return product;
}

void StepWatch::check_near(const WatchedProduct& product, std::int64_t te, const BigFloat& K, int carry) const {
    if (!on) return;
    const std::int64_t top = product.exp + static_cast<std::int64_t>(product.length);
    // The product is at least W^(top - 2), and next to K, which may be on the other side of a power of W.
    if (top < K.top() - 1 || top > K.top() + 2) fail();
    if (product.C == 0) return;
    const std::uint64_t change = carry < 0 ? hash_negate(1) : static_cast<std::uint64_t>(carry);
    if (product.length <= product.C) {
        if (product.above != add_mod(shift_words(residue(K, te), -te), change)) fail();
        return;
    }
    // A carry or borrow that leaves Z at its top, by W^(end - te), comes with a U that is one more or less. Only so much is
    // allowed: since 2^61 = 1, a wrong bit somewhere above would look like a carry.
    const auto C = static_cast<std::int64_t>(product.C);
    const std::int64_t end = product.exp + C;
    const std::uint64_t modulus = add_mod(pow_word(C), 1), U = shift_words(residue(K, end), -end);
    const std::uint64_t rest = subtract_mod(subtract_mod(product.total, product.folded), mul_mod(U, modulus));
    const std::uint64_t kept = add_mod(shift_words(residue(K, te, end), -te), change);
    const std::uint64_t difference = subtract_mod(product.above, kept), leaving = pow_word(end - te);
    const bool is_right = (difference == 0 && rest == 0) || (difference == leaving && rest == hash_negate(modulus))
                          || (difference == hash_negate(leaving) && rest == modulus);
    if (!is_right) fail();
}

void StepWatch::check_near_one(const WatchedProduct& product, std::int64_t te, Estimate side) const {
    wtype word = 1;
    BigFloat one(&word, 1);
    one.L = 1;
    check_near(product, te, one, side == Estimate::under ? -1 : 0);
}

std::uint64_t StepWatch::residual(std::uint64_t t, Estimate side, std::int64_t pos) {
    return side == Estimate::over ? t : subtract_mod(pow_word(pos), t);
}

void StepWatch::check_sum(BigFloat& T, bool minus, const BigFloat& F, std::uint64_t f, const BigFloat& R,
                          std::uint64_t r, bool nudged) const {
    if (!on) return;
    f = subtract_mod(f, residue(F, lowest, T.exp));
    r = subtract_mod(r, residue(R, lowest, T.exp));
    const std::uint64_t sum = minus ? subtract_mod(f, r) : add_mod(f, r);
    check(T, nudged ? add_mod(sum, pow_word(T.exp)) : sum);
}

std::uint64_t StepWatch::square(const BigFloat& T, const BigFloat& F, std::uint64_t f) const {
    if (!on) return 0;
    const std::int64_t base = 2 * F.exp;
    std::uint64_t low = 0; // of the words that were cut: those products of F's lowest words
    const std::int64_t cut = T.exp - base;
    DoubleWordSum sum;
    for (std::int64_t k = 0; k < cut; ++k) {
        for (std::int64_t i = 0; i <= k; ++i) sum.add(F.get_word(F.exp + i), F.get_word(F.exp + k - i));
        low = add_mod(low, shift_words(sum.take_word(), k));
    }
    const std::uint64_t t = residue(T);
    const std::uint64_t missing = shift_words(subtract_mod(mul_mod(f, f), add_mod(t, shift_words(low, base))), -T.exp);
    if (missing > 2) fail();
    return t;
}

void StepWatch::check(BigFloat& X, std::uint64_t expected) const {
    if (!on) return;
    if (residue(X) != expected) throw AlgorithmFailedException(function, "Number Hash Mismatch");
    carry(X, expected);
}

void StepWatch::carry(BigFloat& X, std::uint64_t expected) const {
    if (!on) return;
    X.hash = shift_words(expected, -X.exp);
    X.watched = true;
}

void StepWatch::check_unseen(const BigFloat& X, const WatchedFactor& a) const {
    if (on && !sees_products && residue(X, a.exp) != a.residue)
        throw AlgorithmFailedException(function, "Number Hash Mismatch");
}

void StepWatch::fail() const { throw AlgorithmFailedException(function, "Modular redundancy check failed."); }

} // namespace zvp
