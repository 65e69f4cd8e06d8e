#pragma once
// Multiplication by a limb with mulx (BMI2) and with two carry flags (ADX): for sources of kernel sets that have them.

#include "multiply/words/carry_chain.h"

namespace zvp {

/// T = A * x + carry; returns the high limb. BMI2.
inline c64i mulx_chain(void* T, const void* A, std::size_t limbs, c64i x, c64i carry) {
    std::size_t i = 0;
    if (std::size_t rounds = limbs / 8) {
        c64i low, high;
        __asm__ volatile(
            "xor %k[low], %k[low]\n" // clears the carry flag
            "1:\n\t"
            ".irp at, 0, 16, 32, 48\n\t"
            "mulx \\at(%[A], %[i], 8), %[low], %[high]\n\t"
            "adc %[carry], %[low]\n\t"
            "mov %[low], \\at(%[T], %[i], 8)\n\t"
            "mulx \\at + 8(%[A], %[i], 8), %[low], %[carry]\n\t"
            "adc %[high], %[low]\n\t"
            "mov %[low], \\at + 8(%[T], %[i], 8)\n\t"
            ".endr\n\t"
            "lea 8(%[i]), %[i]\n\t"
            "dec %[rounds]\n\t"
            "jnz 1b\n\t"
            "adc $0, %[carry]"
            : [carry] "+&r"(carry), [i] "+&r"(i), [rounds] "+&r"(rounds), [low] "=&r"(low), [high] "=&r"(high)
            : [T] "r"(T), [A] "r"(A), "d"(x)
            : "cc", "memory");
    }
    for (; i < limbs; ++i) {
        const unsigned __int128 v = static_cast<unsigned __int128>(load_limb(A, i)) * x + carry;
        store_limb(T, i, static_cast<c64i>(v));
        carry = static_cast<c64i>(v >> 64);
    }
    return carry;
}

/// The limbs of T += A * x + carry from `i` on; returns the high limb.
inline c64i mul_add_tail(void* T, const void* A, std::size_t i, std::size_t limbs, c64i x, c64i carry) {
    for (; i < limbs; ++i) {
        const unsigned __int128 v = static_cast<unsigned __int128>(load_limb(A, i)) * x + load_limb(T, i) + carry;
        store_limb(T, i, static_cast<c64i>(v));
        carry = static_cast<c64i>(v >> 64);
    }
    return carry;
}

/// T += A * x + carry; returns the high limb. BMI2: four products a round, their sum in one chain, the addition to T in
/// another.
inline c64i mulx_add_chain(void* T, const void* A, std::size_t limbs, c64i x, c64i carry) {
    std::size_t i = 0;
    if (std::size_t rounds = limbs / 4) {
        c64i l0, l1, l2, l3, h0, h1;
        __asm__ volatile("1:\n\t"
                         "mulx (%[A], %[i], 8), %[l0], %[h0]\n\t"
                         "mulx 8(%[A], %[i], 8), %[l1], %[h1]\n\t"
                         "add %[carry], %[l0]\n\t"
                         "adc %[h0], %[l1]\n\t"
                         "mulx 16(%[A], %[i], 8), %[l2], %[h0]\n\t"
                         "mulx 24(%[A], %[i], 8), %[l3], %[carry]\n\t"
                         "adc %[h1], %[l2]\n\t"
                         "adc %[h0], %[l3]\n\t"
                         "adc $0, %[carry]\n\t"
                         "add (%[T], %[i], 8), %[l0]\n\t"
                         "mov %[l0], (%[T], %[i], 8)\n\t"
                         "adc 8(%[T], %[i], 8), %[l1]\n\t"
                         "mov %[l1], 8(%[T], %[i], 8)\n\t"
                         "adc 16(%[T], %[i], 8), %[l2]\n\t"
                         "mov %[l2], 16(%[T], %[i], 8)\n\t"
                         "adc 24(%[T], %[i], 8), %[l3]\n\t"
                         "mov %[l3], 24(%[T], %[i], 8)\n\t"
                         "adc $0, %[carry]\n\t"
                         "lea 4(%[i]), %[i]\n\t"
                         "dec %[rounds]\n\t"
                         "jnz 1b"
                         : [carry] "+&r"(carry), [i] "+&r"(i), [rounds] "+&r"(rounds), [l0] "=&r"(l0), [l1] "=&r"(l1),
                           [l2] "=&r"(l2), [l3] "=&r"(l3), [h0] "=&r"(h0), [h1] "=&r"(h1)
                         : [T] "r"(T), [A] "r"(A), "d"(x)
                         : "cc", "memory");
    }
    return mul_add_tail(T, A, i, limbs, x, carry);
}

/// T += A * x + carry; returns the high limb. BMI2 and ADX: the carry flag adds the high limbs, the overflow flag adds T.
/// jrcxz is the loop's only branch that needs neither flag.
inline c64i adx_add_chain(void* T, const void* A, std::size_t limbs, c64i x, c64i carry) {
    std::size_t i = 0;
    if (std::size_t rounds = limbs / 8) {
        c64i low, high;
        __asm__ volatile(
            "xor %k[low], %k[low]\n" // clears both flags
            "1:\n\t"
            ".irp at, 0, 16, 32, 48\n\t"
            "mulx \\at(%[A], %[i], 8), %[low], %[high]\n\t"
            "adcx %[carry], %[low]\n\t"
            "adox \\at(%[T], %[i], 8), %[low]\n\t"
            "mov %[low], \\at(%[T], %[i], 8)\n\t"
            "mulx \\at + 8(%[A], %[i], 8), %[low], %[carry]\n\t"
            "adcx %[high], %[low]\n\t"
            "adox \\at + 8(%[T], %[i], 8), %[low]\n\t"
            "mov %[low], \\at + 8(%[T], %[i], 8)\n\t"
            ".endr\n\t"
            "lea 8(%[i]), %[i]\n\t"
            "lea -1(%[rounds]), %[rounds]\n\t"
            "jrcxz 2f\n\t"
            "jmp 1b\n"
            "2:\n\t"
            "mov $0, %k[low]\n\t"
            "adcx %[low], %[carry]\n\t"
            "adox %[low], %[carry]"
            : [carry] "+&r"(carry), [i] "+&r"(i), [rounds] "+&c"(rounds), [low] "=&r"(low), [high] "=&r"(high)
            : [T] "r"(T), [A] "r"(A), "d"(x)
            : "cc", "memory");
    }
    return mul_add_tail(T, A, i, limbs, x, carry);
}

} // namespace zvp
