#pragma once
// Short exact integers that carry their residue modulo 2^61 - 1: what the leaves of series and the small powers are
// made of.
//
// The residue comes from the residues of the operands, never from the words of a result: a word that was damaged, or
// that an operation got wrong, shows when somebody compares it with the residue of the words (residue()). Products are
// schoolbook products. Nothing goes parallel, and only what says so takes memory. Lengths are in words.

#include "digits/hash/word_hash.h"
#include "multiply/words/word_types.h"
#include "parallel/memory/memory_allocator.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace zvp {

/// An integer on storage that somebody else owns; copying it copies the view. The value is the sum of T[i] * 2^(w i),
/// i < L, w the bits of a Word.
///
/// The top word T[L - 1] isn't zero. L = 0 is the value zero, which views may hold and multiply but no subtraction
/// leaves. Any number congruent to the value is a good `hash` as long as it is below 2^62, which the results are.
///
/// The operations throw BufferTooSmallException with their name, before anything is written, when the capacity is less
/// than they say.
template <class Word>
class BasicInt {
public:
    Word* T = nullptr;
    std::size_t L = 0;
    std::size_t capacity = 0;
    std::uint64_t hash = 0;

    /// A zero without storage.
    BasicInt() = default;

    /// A zero on `capacity_` words of storage.
    BasicInt(Word* T_, std::size_t capacity_) : T(T_), capacity(capacity_) {}

    /// A copy of A, which doesn't overlap this storage. Capacity: A.L.
    void set_BasicInt(const BasicInt& A);

    /// A * B, which don't overlap this storage; they may be the same number. Capacity: A.L + B.L.
    void set_mulB(const BasicInt& A, const BasicInt& B);

    /// A^2; A doesn't overlap this storage. Capacity: 2 A.L.
    void set_sqrB(const BasicInt& A);

    // In place; B may be this number, but may not overlap it otherwise.

    /// Capacity: L + 1. A longer B is a fatal stop.
    BasicInt& operator+=(const BasicInt& B);

    /// Capacity: L + 1; T[L] is written. Throws UnsupportedNegativeException when B is greater than this number, and
    /// UnsupportedZeroException when they are equal; this number is lost then, unless B is longer.
    BasicInt& operator-=(const BasicInt& B);

    /// By way of memory from the heap. Capacity: the length of the product, asked for by set_BasicInt().
    BasicInt& operator*=(const BasicInt& B);

    /// The residue of the words modulo 2^61 - 1, in [0, 2^61 - 1). Equal to normalize_hash(hash) unless something is
    /// damaged.
    std::uint64_t residue() const { return hash_words(0, T, L); }

private:
    void check_room(const char* function, std::size_t needed) const;
};

/// The name of the view where it stands beside BasicIntO.
template <class Word>
using BasicIntR = BasicInt<Word>;

/// An integer that owns its words. What it inherits keeps to the storage that it has; set_BasicInt() and operator*=
/// take new storage.
template <class Word>
class BasicIntO : public BasicInt<Word> {
public:
    /// Capacity: 4. Throws UnsupportedZeroException for 0. The memory is the heap's or that of an allocator which
    /// outlives the number; MemoryAllocationFailedException if there is none, here and below.
    explicit BasicIntO(std::uint64_t value);
    BasicIntO(std::uint64_t value, const MemoryAllocator& allocator_);

    BasicIntO(const BasicIntO&) = delete;
    BasicIntO& operator=(const BasicIntO&) = delete;

    /// A copy of A, with room for two more words. A may be this number or a view of it.
    void set_BasicInt(const BasicInt<Word>& A);

    /// B may be this number or a view of it.
    BasicIntO& operator*=(const BasicInt<Word>& B);

private:
    std::unique_ptr<Allocation> allocate(std::size_t words) const;
    static Word* words_of(const Allocation& memory);
    void adopt(std::unique_ptr<Allocation> memory, const BasicInt<Word>& number);

    std::unique_ptr<Allocation> storage;
    const MemoryAllocator& allocator;
};

} // namespace zvp
