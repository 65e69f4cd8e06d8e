#pragma once
// Rows of limb products with mulx (BMI2) and two carry chains (ADX): for sources of kernel sets that have them. In
// assembly, because compilers keep no carry in a flag, let alone two.
//
// A block is W limbs of A, W <= 8, times a stream of limbs of B, one row for each. Between rows the sum's upper W limbs
// stay in registers; a row sends its lowest limb off to T:
//
//            a0         a1   ..       a7
//   T  <-  + low 0    + low 1  .. + low 7        the carry flag's chain adds the low limbs,
//                     + high 0 .. + high 6 + high 7
//
// and the sum moves down by one limb; the overflow flag's chain adds the old sum, and T in front where T is added to.

#include "multiply/basecase/limb.h"

namespace zvp::MULB {

struct RowSum {
    std::uint64_t a0 = 0, a1 = 0, a2 = 0, a3 = 0, a4 = 0, a5 = 0, a6 = 0, a7 = 0;

    /// T[0, W - 1) = the sum's limbs below the top one of W, which is returned.
    template <std::size_t W>
    [[gnu::always_inline]] std::uint64_t store(limb* T) const {
        if constexpr (W > 1) store_limb(T[0], a0);
        if constexpr (W > 2) store_limb(T[1], a1);
        if constexpr (W > 3) store_limb(T[2], a2);
        if constexpr (W > 4) store_limb(T[3], a3);
        if constexpr (W > 5) store_limb(T[4], a4);
        if constexpr (W > 6) store_limb(T[5], a5);
        if constexpr (W > 7) store_limb(T[6], a6);
        const std::uint64_t all[8] = {a0, a1, a2, a3, a4, a5, a6, a7};
        return all[W - 1];
    }

    /// Compilers like to gather such stores in a vector by way of the stack, which waits for every store on the way.
    [[gnu::always_inline]] static void store_limb(limb& to, std::uint64_t x) {
        __asm__("mov %1, %0" : "=m"(to) : "r"(x));
    }
};

/// For i = 0 .. m - 1: sum += A[0, W) * B[i], T[i] = the sum's lowest limb, with T[i] added before when Add, and
/// sum /= 2^64.
/// m >= 1. Never overflows: (2^64W - 1) * (2^64 - 1) + (2^64W - 1) + (2^64 - 1) < 2^(64W + 64).
template <std::size_t W, bool Add>
[[gnu::always_inline]] inline void rows(RowSum& sum, limb* T, const limb* A, const limb* B, std::size_t m) {
    static_assert(W >= 1 && W <= 8);
    const auto end = reinterpret_cast<std::uint64_t>(B + m); // in a vector register: the others are all taken
    const std::ptrdiff_t to_T = reinterpret_cast<char*>(T) - reinterpret_cast<const char*>(B);
    std::uint64_t low, high;
    __asm__ volatile("1:\n\t"
                     "mov (%[B]), %%rdx\n\t"
                     "xor %k[low], %k[low]\n\t" // clears both flags
                     "mulx (%[A]), %[low], %[high]\n\t"
                     ".if %c[add]\n\t"
                     "adox (%[B], %[to_T]), %[a0]\n\t"
                     ".endif\n\t"
                     "adcx %[low], %[a0]\n\t"
                     "mov %[a0], (%[B], %[to_T])\n\t"
                     "mov %[high], %[a0]\n\t"
                     ".if %c[w] > 1\n\t"
                     "adox %[a1], %[a0]\n\t"
                     "mulx 8(%[A]), %[low], %[a1]\n\t"
                     "adcx %[low], %[a0]\n\t"
                     ".endif\n\t"
                     ".if %c[w] > 2\n\t"
                     "adox %[a2], %[a1]\n\t"
                     "mulx 16(%[A]), %[low], %[a2]\n\t"
                     "adcx %[low], %[a1]\n\t"
                     ".endif\n\t"
                     ".if %c[w] > 3\n\t"
                     "adox %[a3], %[a2]\n\t"
                     "mulx 24(%[A]), %[low], %[a3]\n\t"
                     "adcx %[low], %[a2]\n\t"
                     ".endif\n\t"
                     ".if %c[w] > 4\n\t"
                     "adox %[a4], %[a3]\n\t"
                     "mulx 32(%[A]), %[low], %[a4]\n\t"
                     "adcx %[low], %[a3]\n\t"
                     ".endif\n\t"
                     ".if %c[w] > 5\n\t"
                     "adox %[a5], %[a4]\n\t"
                     "mulx 40(%[A]), %[low], %[a5]\n\t"
                     "adcx %[low], %[a4]\n\t"
                     ".endif\n\t"
                     ".if %c[w] > 6\n\t"
                     "adox %[a6], %[a5]\n\t"
                     "mulx 48(%[A]), %[low], %[a6]\n\t"
                     "adcx %[low], %[a5]\n\t"
                     ".endif\n\t"
                     ".if %c[w] > 7\n\t"
                     "adox %[a7], %[a6]\n\t"
                     "mulx 56(%[A]), %[low], %[a7]\n\t"
                     "adcx %[low], %[a6]\n\t"
                     ".endif\n\t"
                     "mov $0, %k[low]\n\t"
                     ".Lplace = 1\n\t"
                     ".irp last, %[a0], %[a1], %[a2], %[a3], %[a4], %[a5], %[a6], %[a7]\n\t"
                     ".if .Lplace == %c[w]\n\t"
                     "adcx %[low], \\last\n\t"
                     "adox %[low], \\last\n\t"
                     ".endif\n\t"
                     ".Lplace = .Lplace + 1\n\t"
                     ".endr\n\t"
                     "lea 8(%[B]), %[B]\n\t"
                     "movq %[end], %[low]\n\t"
                     "cmp %[low], %[B]\n\t"
                     "jne 1b"
                     : [B] "+&r"(B), [low] "=&r"(low), [high] "=&r"(high), [a0] "+&r"(sum.a0), [a1] "+&r"(sum.a1),
                       [a2] "+&r"(sum.a2), [a3] "+&r"(sum.a3), [a4] "+&r"(sum.a4), [a5] "+&r"(sum.a5),
                       [a6] "+&r"(sum.a6), [a7] "+&r"(sum.a7)
                     : [A] "r"(A), [to_T] "r"(to_T), [end] "x"(end), [w] "i"(W), [add] "i"(Add)
                     : "rdx", "cc", "memory");
}

} // namespace zvp::MULB
