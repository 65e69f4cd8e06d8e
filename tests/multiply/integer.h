#pragma once
// GMP's integers, the oracle of word arithmetic and products.

#include "multiply/words/word_types.h"

#include <gmp.h>

#include <vector>

namespace test {

class Integer {
public:
    Integer() { mpz_init(value); }
    explicit Integer(zvp::c64i x) { mpz_init_set_ui(value, x); }
    template <class Word>
    Integer(const Word* T, std::size_t n) : Integer() {
        mpz_import(value, n, -1, sizeof(Word), 0, 0, T);
    }
    template <class Word>
    explicit Integer(const std::vector<Word>& words) : Integer(words.data(), words.size()) {}
    Integer(const Integer& other) { mpz_init_set(value, other.value); }
    Integer& operator=(const Integer& other) {
        mpz_set(value, other.value);
        return *this;
    }
    ~Integer() { mpz_clear(value); }

    /// this * W^n.
    template <class Word>
    Integer times_power(std::size_t n) const {
        Integer result;
        mpz_mul_2exp(result.value, value, n * zvp::word_bits<Word>);
        return result;
    }

    zvp::c64i modulo(zvp::c64i m) const { return mpz_fdiv_ui(value, m); }

    /// The n words of a number that has no more.
    template <class Word>
    std::vector<Word> words(std::size_t n) const {
        std::vector<Word> out(n);
        mpz_export(out.data(), nullptr, -1, sizeof(Word), 0, 0, value);
        return out;
    }

    friend Integer operator+(const Integer& a, const Integer& b) { return make(mpz_add, a, b); }
    friend Integer operator-(const Integer& a, const Integer& b) { return make(mpz_sub, a, b); }
    friend Integer operator*(const Integer& a, const Integer& b) { return make(mpz_mul, a, b); }
    friend bool operator==(const Integer& a, const Integer& b) { return mpz_cmp(a.value, b.value) == 0; }

    mpz_t value;

private:
    static Integer make(void (*operation)(mpz_ptr, mpz_srcptr, mpz_srcptr), const Integer& a, const Integer& b) {
        Integer result;
        operation(result.value, a.value, b.value);
        return result;
    }
};

template <class Word>
std::vector<Word> exact_product(const std::vector<Word>& A, const std::vector<Word>& B) {
    return (Integer(A) * Integer(B)).template words<Word>(A.size() + B.size());
}

} // namespace test
