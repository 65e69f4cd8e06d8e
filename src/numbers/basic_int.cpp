#include "numbers/basic_int.h"

#include "app/console/console.h"
#include "app/failure/exceptions.h"
#include "digits/hash/hash_field.h"
#include "multiply/words/word_loops.h"
#include "numbers/schoolbook.h"
#include "parallel/memory/malloc_allocator.h"

#include <algorithm>
#include <string>
#include <utility>

namespace zvp {
namespace {

/// h - k: with both below 2^62, so is the result.
std::uint64_t subtract_hash(std::uint64_t h, std::uint64_t k) {
    const auto d = static_cast<std::int64_t>(h - k);
    return (static_cast<std::uint64_t>(d) & hash_modulus) + static_cast<std::uint64_t>(d >> hash_bits) + hash_modulus;
}

[[gnu::cold, noreturn]] void throw_negative() {
    throw UnsupportedNegativeException("BasicInt::operator-=()", "A negative value was encountered.");
}

[[gnu::cold, noreturn]] void throw_zero(const char* function) {
    throw UnsupportedZeroException(function, "Zero was encountered.");
}

} // namespace

template <class Word>
void BasicInt<Word>::check_room(const char* function, std::size_t needed) const {
    if (capacity < needed) throw BufferTooSmallException(function, capacity, needed);
}

template <class Word>
void BasicInt<Word>::set_BasicInt(const BasicInt& A) {
    check_room("BasicInt::set_BasicInt()", A.L);
    std::copy(A.T, A.T + A.L, T);
    L = A.L;
    hash = A.hash;
}

template <class Word>
void BasicInt<Word>::set_mulB(const BasicInt& A, const BasicInt& B) {
    const std::size_t n = A.L + B.L;
    check_room("BasicIntR::set_mulB()", n);
    hash = mul_mod(A.hash, B.hash);
    L = 0;
    if (A.L == 0 || B.L == 0) return;
    multiply_schoolbook(T, A.T, A.L, B.T, B.L);
    L = n - (T[n - 1] == 0);
}

template <class Word>
void BasicInt<Word>::set_sqrB(const BasicInt& A) {
    const std::size_t n = 2 * A.L;
    check_room("BasicInt::set_sqrB()", n);
    hash = mul_mod(A.hash, A.hash);
    L = 0;
    if (A.L == 0) return;
    square_schoolbook(T, A.T, A.L);
    L = n - (T[n - 1] == 0);
}

template <class Word>
BasicInt<Word>& BasicInt<Word>::operator+=(const BasicInt& B) {
    check_room("BasicInt::operator+=()", L + 1);
    if (B.L > L) fatal_stop("Invalid Function Parameters:   BasicInt::operator+=()");
    const std::size_t n = B.L;
    const bool carry = n == 1 ? add_word(T, L, *B.T) : add_words(T, T, B.T, n) && add_word(T + n, L - n, Word{1});
    if (carry) T[L++] = 1;
    hash = fold_hash(hash + B.hash);
    return *this;
}

template <class Word>
BasicInt<Word>& BasicInt<Word>::operator-=(const BasicInt& B) {
    check_room("BasicInt::operator-=()", L + 1);
    if (B.L > L) throw_negative();
    const std::size_t n = B.L;
    T[L] = 1; // stops the borrow that passes all words
    bool borrow;
    if (n == 1) {
        const Word x = *B.T;
        borrow = T[0] < x;
        T[0] -= x;
    } else {
        borrow = subtract_words(T, T, B.T, n);
    }
    if (borrow) carry_ripple(-1, T + n, L + 1 - n);
    if (T[L] == 0) throw_negative();
    L = top_length(Word{0}, T, L);
    if (L == 0) throw_zero("BasicInt::operator-=()");
    hash = subtract_hash(hash, B.hash);
    return *this;
}

template <class Word>
BasicInt<Word>& BasicInt<Word>::operator*=(const BasicInt& B) {
    const std::size_t n = L + B.L;
    const auto words = std::make_unique_for_overwrite<Word[]>(n);
    BasicInt product(words.get(), n);
    product.set_mulB(*this, B);
    set_BasicInt(product);
    return *this;
}

namespace {

constexpr std::size_t first_words = 4;
constexpr std::size_t spare_words = 2;

const MemoryAllocator& heap_allocator() {
    static const MallocAllocator allocator;
    return allocator;
}

} // namespace

template <class Word>
BasicIntO<Word>::BasicIntO(std::uint64_t value) : BasicIntO(value, heap_allocator()) {}

template <class Word>
BasicIntO<Word>::BasicIntO(std::uint64_t value, const MemoryAllocator& allocator_) : allocator(allocator_) {
    if (value == 0) throw_zero("BasicIntO::BasicIntO()");
    auto memory = allocate(first_words);
    BasicInt<Word> number(words_of(*memory), first_words);
    number.T[number.L++] = static_cast<Word>(value);
    if constexpr (word_bits<Word> < 64)
        if (const auto high = static_cast<Word>(value >> word_bits<Word>)) number.T[number.L++] = high;
    number.hash = fold_hash(value);
    adopt(std::move(memory), number);
}

template <class Word>
std::unique_ptr<Allocation> BasicIntO<Word>::allocate(std::size_t words) const {
    constexpr unsigned alignment_bits = 6; // a cache line
    const std::size_t bytes = words * sizeof(Word);
    auto memory = allocator.allocate({}, alignment_bits, bytes);
    if (!memory->pointer)
        throw MemoryAllocationFailedException("BasicIntO::allocate()", "", std::string(allocator.display_name()),
                                              bytes);
    return memory;
}

template <class Word>
Word* BasicIntO<Word>::words_of(const Allocation& memory) {
    return reinterpret_cast<Word*>(memory.pointer);
}

/// Makes the number, whose words lie in `memory`, this one.
template <class Word>
void BasicIntO<Word>::adopt(std::unique_ptr<Allocation> memory, const BasicInt<Word>& number) {
    storage = std::move(memory);
    static_cast<BasicInt<Word>&>(*this) = number;
}

template <class Word>
void BasicIntO<Word>::set_BasicInt(const BasicInt<Word>& A) {
    const std::size_t n = A.L + spare_words;
    auto memory = allocate(n);
    BasicInt<Word> copy(words_of(*memory), n);
    copy.set_BasicInt(A);
    adopt(std::move(memory), copy);
}

template <class Word>
BasicIntO<Word>& BasicIntO<Word>::operator*=(const BasicInt<Word>& B) {
    const std::size_t n = this->L + B.L + spare_words;
    auto memory = allocate(n);
    BasicInt<Word> product(words_of(*memory), n);
    product.set_mulB(*this, B);
    adopt(std::move(memory), product);
    return *this;
}

template class BasicInt<c32i>;
template class BasicInt<c64i>;
template class BasicIntO<c32i>;
template class BasicIntO<c64i>;

} // namespace zvp
