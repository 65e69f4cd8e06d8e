#pragma once
// Carry chains over 64-bit limbs, written in assembly because compilers spill the carry flag between the steps of a loop.
// Limbs are addressed as bytes: an array of c32i words is worked two words at a time, at any alignment.
//
// Eight limbs a round; index arithmetic by lea and dec, which leave the carry flag alone.

#include "multiply/words/word_types.h"

#include <cstring>

namespace zvp {

inline c64i load_limb(const void* p, std::size_t i) {
    c64i x;
    std::memcpy(&x, static_cast<const std::byte*>(p) + 8 * i, 8);
    return x;
}

inline void store_limb(void* p, std::size_t i, c64i x) { std::memcpy(static_cast<std::byte*>(p) + 8 * i, &x, 8); }

/// a + b + carry; the carry is replaced.
template <class Word>
Word add_step(Word a, Word b, bool& carry) {
    Word sum;
    const bool first = __builtin_add_overflow(a, b, &sum);
    const bool second = __builtin_add_overflow(sum, Word{carry}, &sum);
    carry = first | second;
    return sum;
}

/// a - b - borrow; the borrow is replaced.
template <class Word>
Word subtract_step(Word a, Word b, bool& borrow) {
    Word difference;
    const bool first = __builtin_sub_overflow(a, b, &difference);
    const bool second = __builtin_sub_overflow(difference, Word{borrow}, &difference);
    borrow = first | second;
    return difference;
}

/// T = A + B + carry; returns the carry out. T may be A or B.
inline bool add_chain(void* T, const void* A, const void* B, std::size_t limbs, bool carry) {
    std::size_t i = 0;
    if (std::size_t rounds = limbs / 8) {
        c64i limb;
        __asm__ volatile("addb $-1, %b[carry]\n" // the carry flag becomes the carry
                         "1:\n\t"
                         ".irp at, 0, 8, 16, 24, 32, 40, 48, 56\n\t"
                         "mov \\at(%[A], %[i], 8), %[limb]\n\t"
                         "adc \\at(%[B], %[i], 8), %[limb]\n\t"
                         "mov %[limb], \\at(%[T], %[i], 8)\n\t"
                         ".endr\n\t"
                         "lea 8(%[i]), %[i]\n\t"
                         "dec %[rounds]\n\t"
                         "jnz 1b\n\t"
                         "setc %b[carry]"
                         : [carry] "+&q"(carry), [i] "+&r"(i), [rounds] "+&r"(rounds), [limb] "=&r"(limb)
                         : [T] "r"(T), [A] "r"(A), [B] "r"(B)
                         : "cc", "memory");
    }
    for (; i < limbs; ++i) store_limb(T, i, add_step(load_limb(A, i), load_limb(B, i), carry));
    return carry;
}

/// T = A - B - borrow; returns the borrow out. T may be A or B.
inline bool subtract_chain(void* T, const void* A, const void* B, std::size_t limbs, bool borrow) {
    std::size_t i = 0;
    if (std::size_t rounds = limbs / 8) {
        c64i limb;
        __asm__ volatile("addb $-1, %b[borrow]\n" // the carry flag becomes the borrow
                         "1:\n\t"
                         ".irp at, 0, 8, 16, 24, 32, 40, 48, 56\n\t"
                         "mov \\at(%[A], %[i], 8), %[limb]\n\t"
                         "sbb \\at(%[B], %[i], 8), %[limb]\n\t"
                         "mov %[limb], \\at(%[T], %[i], 8)\n\t"
                         ".endr\n\t"
                         "lea 8(%[i]), %[i]\n\t"
                         "dec %[rounds]\n\t"
                         "jnz 1b\n\t"
                         "setc %b[borrow]"
                         : [borrow] "+&q"(borrow), [i] "+&r"(i), [rounds] "+&r"(rounds), [limb] "=&r"(limb)
                         : [T] "r"(T), [A] "r"(A), [B] "r"(B)
                         : "cc", "memory");
    }
    for (; i < limbs; ++i) store_limb(T, i, subtract_step(load_limb(A, i), load_limb(B, i), borrow));
    return borrow;
}

/// Sum = A + B + carry and Difference = A - B - borrow; carry and borrow are replaced. Sum may be A or B, Difference
/// neither.
inline void add_subtract_chains(void* Sum, void* Difference, const void* A, const void* B, std::size_t limbs,
                                bool& carry, bool& borrow) {
    std::size_t i = 0;
    if (std::size_t rounds = limbs / 8) {
        c64i limb;
        __asm__ volatile(
            "1:\n\t"
            "addb $-1, %b[borrow]\n\t" // the carry flag becomes the borrow
            ".irp at, 0, 8, 16, 24, 32, 40, 48, 56\n\t"
            "mov \\at(%[A], %[i], 8), %[limb]\n\t"
            "sbb \\at(%[B], %[i], 8), %[limb]\n\t"
            "mov %[limb], \\at(%[Difference], %[i], 8)\n\t"
            ".endr\n\t"
            "setc %b[borrow]\n\t"
            "addb $-1, %b[carry]\n\t"
            ".irp at, 0, 8, 16, 24, 32, 40, 48, 56\n\t"
            "mov \\at(%[A], %[i], 8), %[limb]\n\t"
            "adc \\at(%[B], %[i], 8), %[limb]\n\t"
            "mov %[limb], \\at(%[Sum], %[i], 8)\n\t"
            ".endr\n\t"
            "setc %b[carry]\n\t"
            "add $8, %[i]\n\t"
            "dec %[rounds]\n\t"
            "jnz 1b"
            : [carry] "+&q"(carry), [borrow] "+&q"(borrow), [i] "+&r"(i), [rounds] "+&r"(rounds), [limb] "=&r"(limb)
            : [Sum] "r"(Sum), [Difference] "r"(Difference), [A] "r"(A), [B] "r"(B)
            : "cc", "memory");
    }
    for (; i < limbs; ++i) {
        const c64i a = load_limb(A, i), b = load_limb(B, i);
        store_limb(Sum, i, add_step(a, b, carry));
        store_limb(Difference, i, subtract_step(a, b, borrow));
    }
}

} // namespace zvp
