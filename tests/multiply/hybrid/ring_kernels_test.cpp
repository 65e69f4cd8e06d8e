// The arithmetic of ring elements against GMP modulo 2^N + 1, in every kernel set.

#include "hybrid_areas.h"
#include "multiply/hybrid/element_passes.h"

#include <gmpxx.h>

#include <cstring>
#include <map>

using namespace zvp;

namespace {

enum class Low { random, zeros, ones, runs, edges };
constexpr std::int32_t tops[]{0, 0, 1, -1, 2, -3, 1 << 23, -(1 << 23)};

/// Elements one behind the other, as in a form: each stands guard for its neighbours.
class Form {
public:
    Form(std::mt19937_64& random, std::size_t n_) : n(n_), words(2 * guard + count * (n + 1), 0xA7A7A7A7) {
        for (std::size_t i = 0; i < count; ++i) fill(random, i);
        mpz_setbit(modulus.get_mpz_t(), 32 * n);
        modulus += 1;
    }

    std::uint32_t* at(std::size_t i) { return words.data() + guard + i * (n + 1); }

    mpz_class value(std::size_t i) {
        mpz_class low;
        mpz_import(low.get_mpz_t(), n, -1, 4, 0, 0, at(i));
        return reduced(low - static_cast<std::int32_t>(at(i)[n]));
    }
    mpz_class reduced(const mpz_class& x) const {
        mpz_class residue;
        mpz_mod(residue.get_mpz_t(), x.get_mpz_t(), modulus.get_mpz_t());
        return residue;
    }
    mpz_class power(std::uint64_t bits) const { return reduced(mpz_class(1) << bits); }

    /// `operation` makes these elements what is told, and leaves all else as it is.
    template <class Operation>
    void expect_effect(const std::map<std::size_t, mpz_class>& effect, Operation&& operation) {
        std::vector<std::uint32_t> before = words;
        operation();
        for (const auto& [i, expected] : effect) {
            ASSERT_EQ(value(i), reduced(expected)) << "element " << i;
            std::copy_n(at(i), n + 1, before.data() + guard + i * (n + 1));
        }
        ASSERT_EQ(words, before) << "written beside the target";
    }

    const std::size_t n;

    static constexpr std::size_t count = 8;

private:
    void fill(std::mt19937_64& random, std::size_t i) {
        const auto kind = static_cast<Low>(random() % 5);
        unsigned run = 0;
        for (std::size_t w = 0; w < n; ++w) {
            if (random() % 8 == 0) run = random() % 3;
            const unsigned what = kind == Low::zeros ? 0 : kind == Low::ones ? 1 : kind == Low::random ? 2 : run;
            at(i)[w] = what == 0 ? 0 : what == 1 ? ~0U : static_cast<std::uint32_t>(random());
        }
        for (std::size_t w = 0; w < n && kind == Low::edges; w += 2) { // limbs of -3 to 2: carries and borrows meet
            const std::uint64_t limb = random() % 6 - 3;
            std::memcpy(at(i) + w, &limb, sizeof limb);
        }
        at(i)[n] = static_cast<std::uint32_t>(tops[random() % std::size(tops)]);
        if (random() % 4 == 0) at(i)[0] = random() % 2; // one off zeros, ones
    }

    static constexpr std::size_t guard = 17;
    std::vector<std::uint32_t> words;
    mpz_class modulus;
};

/// Blocks are 4 and 8 limbs, strips 64: halves and wholes of one, and all remainders.
constexpr std::size_t ring_words[]{4,  8,  12, 16, 20, 24, 28,  32,  36,  40,  44,  48, 52,
                                   56, 60, 64, 68, 84, 96, 100, 128, 132, 260, 388, 524};

class Kernels : public testing::TestWithParam<platform::KernelSet> {
protected:
    template <class Check>
    void for_forms(int rounds, Check&& check) {
        SCOPED_TRACE(test::seed_trace());
        for (const std::size_t n : ring_words)
            for (int round = 0; round < rounds; ++round) {
                Form form(random, n);
                SCOPED_TRACE("n = " + std::to_string(n) + ", round " + std::to_string(round));
                check(form);
                if (HasFatalFailure()) return;
            }
    }

    std::mt19937_64 random{test::seed()};
    const RingKernels& kernels = ring_kernels(GetParam());
};

TEST_P(Kernels, ButterflyTakesCarriesThroughTheElement) {
    for_forms(60, [&](Form& form) {
        const mpz_class x = form.value(2), y = form.value(5), u = form.value(0), v = form.value(7);
        form.expect_effect({{2, x + y}, {3, x - y}},
                           [&] { kernels.butterfly(form.at(2), form.at(5), form.at(3), form.n); });
        form.expect_effect({{0, u + v}, {7, u - v}},
                           [&] { kernels.butterfly(form.at(0), form.at(7), form.at(7), form.n); });
        form.expect_effect({{4, form.value(4) - form.value(1)}},
                           [&] { kernels.subtract(form.at(4), form.at(1), form.n); });
    });
}

/// A step and the way back, by further elements or in place.
void expect_radix4(const RingKernels& kernels, Form& form, bool in_place) {
    const std::size_t from[4]{1, 6, 3, 4}, to[3]{in_place ? 6U : 0U, in_place ? 3U : 5U, in_place ? 4U : 2U};
    RingWord* const x[4]{form.at(from[0]), form.at(from[1]), form.at(from[2]), form.at(from[3])};
    RingWord* const z[3]{form.at(to[0]), form.at(to[1]), form.at(to[2])};
    const mpz_class x0 = form.value(1), x1 = form.value(6), x2 = form.value(3), x3 = form.value(4);
    const mpz_class J = form.power(16 * form.n);
    form.expect_effect({{1, x0 + x1 + x2 + x3},
                        {to[0], x0 - x1 + x2 - x3},
                        {to[1], x0 - x2 + J * (x1 - x3)},
                        {to[2], x0 - x2 - J * (x1 - x3)}},
                       [&] { kernels.forward4(x, z, form.n); });
    form.expect_effect({{1, 4 * x0}, {6, 4 * x1}, {3, 4 * x2}, {4, 4 * x3}}, [&] { kernels.inverse4(x, z, form.n); });
}

TEST_P(Kernels, RadixFourStepsAndTheWayBack) {
    for_forms(60, [&](Form& form) { expect_radix4(kernels, form, random() % 2); });
}

/// Carries and borrows of two levels, -2 to 3 in all, that run through whole elements.
TEST_P(Kernels, RadixFourStepsOfZerosAndOnes) {
    constexpr std::size_t inputs[]{1, 6, 3, 4};
    for (const std::size_t n : {64, 132, 388})
        for (unsigned kinds = 0; kinds < 81; ++kinds) {
            SCOPED_TRACE("n = " + std::to_string(n) + ", kinds " + std::to_string(kinds));
            Form form(random, n);
            for (unsigned i = 0, left = kinds; i < 4; ++i, left /= 3) { // zero, one, all ones
                std::fill_n(form.at(inputs[i]), n, left % 3 == 2 ? ~0U : 0U);
                form.at(inputs[i])[0] |= left % 3;
                form.at(inputs[i])[n] = 0;
            }
            form.at(inputs[kinds % 4])[n / 2 - 3] ^= 1; // off the even run
            expect_radix4(kernels, form, kinds % 2);
            if (HasFatalFailure()) return;
        }
}

TEST_P(Kernels, FirstStepsOfHalves) {
    for_forms(60, [&](Form& form) {
        RingWord* const z[3]{form.at(0), form.at(5), form.at(2)};
        const bool two = random() % 2;
        // Anywhere in an operand, or where the first result goes.
        std::vector<std::uint32_t> words(2 * form.n + 16);
        for (auto& word : words) word = random() % 4 ? static_cast<std::uint32_t>(random()) : ~0U;
        const std::size_t c = form.n / 2 - 1, begin = random() % 16;
        const RingWord* in[4]{};
        mpz_class low[4];
        for (std::size_t i = 0; i < (two ? 2 : 4); ++i) {
            in[i] = i == 0 && random() % 2 ? form.at(1) : words.data() + begin + i * c;
            mpz_import(low[i].get_mpz_t(), c, -1, 4, 0, 0, in[i]);
        }
        const auto& [x0, x1, x2, x3] = low;
        const mpz_class J = form.power(16 * form.n);
        form.expect_effect({{1, x0 + x1 + x2 + x3},
                            {0, x0 - x1 + x2 - x3},
                            {5, x0 - x2 + J * (x1 - x3)},
                            {2, x0 - x2 - J * (x1 - x3)}},
                           [&] { kernels.load4(in, form.at(1), z, form.n, two); });
    });
}

TEST_P(Kernels, RotationsByEveryKindOfShift) {
    for_forms(8, [&](Form& form) {
        const std::uint64_t N = 32 * form.n;
        std::vector<std::uint64_t> shifts{0,     1,         31,        32,        33,         63,       64, 65,
                                          N / 4, N / 2,     3 * N / 4, N - 65,    N - 64,     N - 1,    N,  N + 1,
                                          N + 7, N + N / 2, N + 64,    2 * N - 2, 2 * N - 64, 2 * N - 1};
        for (int i = 0; i < 8; ++i) shifts.push_back(random() % (2 * N));
        for (const std::uint64_t s : shifts) {
            SCOPED_TRACE("shift " + std::to_string(s));
            const std::size_t from = random() % Form::count,
                              to = (from + 1 + random() % (Form::count - 1)) % Form::count;
            const std::int64_t top = static_cast<std::int32_t>(form.at(from)[form.n]);
            form.expect_effect({{to, form.value(from) * form.power(s)}},
                               [&] { kernels.rotate(form.at(to), form.at(from), form.n, s); });
            EXPECT_LE(std::abs(static_cast<std::int32_t>(form.at(to)[form.n])), std::abs(top) / 2 + 1) << top;
        }
    });
}

TEST_P(Kernels, NormalFormIsCanonical) {
    for_forms(60, [&](Form& form) {
        for (std::size_t i = 0; i < Form::count; ++i) {
            if (random() % 8 == 0) form.at(i)[form.n] = random() % 2 ? 0x7FFFFFFF : 0x80000000;
            const mpz_class value = form.value(i);
            form.expect_effect({{i, value}}, [&] { kernels.normalize(form.at(i), form.n); });
            std::vector<std::uint32_t> canonical(form.n + 1);
            mpz_export(canonical.data(), nullptr, -1, 4, 0, 0, value.get_mpz_t());
            ASSERT_TRUE(std::equal(canonical.begin(), canonical.end(), form.at(i)));
        }
    });
}

TEST_P(Kernels, ResiduesOfEveryLength) {
    SCOPED_TRACE(test::seed_trace());
    for (std::size_t n = 0; n < 700; n += n < 200 ? 1 : 37)
        for (const bool ones : {true, false}) {
            std::vector<std::uint32_t> words(n + 1, ~0U);
            if (!ones)
                for (auto& word : words) word = static_cast<std::uint32_t>(random());
            mpz_class value;
            mpz_import(value.get_mpz_t(), n, -1, 4, 0, 0, words.data() + 1);
            EXPECT_EQ(kernels.residue(words.data() + 1, n), mpz_fdiv_ui(value.get_mpz_t(), 0x7FFFFFFF)) << n;
        }
}

TEST_P(Kernels, RootsOfEvenAndOddHalfBits) {
    SCOPED_TRACE(test::seed_trace());
    const test::RingTables tables(GetParam(), 1 << 13);
    for (const HybridRow row :
         {HybridRow{8, 2}, {9, 1}, {9, 3}, {10, 1}, {9, 5}, {9, 15}, {12, 1}, {12, 3}, {4, 288}}) {
        SCOPED_TRACE(test::name_of(row));
        const HybridSize size(row, 1);
        test::GuardedArea M(size.scratch_bytes);
        const HybridJob job{size, kernels, tables.tables, {}, M.data};
        const std::uint64_t turn = size.turn();
        std::vector<std::uint64_t> exponents{0,        1,        2,    3,       turn / 8 + 1, turn / 2 - 1,
                                             turn / 2, turn - 1, turn, turn + 1};
        for (int i = 0; i < 20; ++i) exponents.push_back(random() % (3 * turn));
        for (const std::uint64_t e : exponents) {
            SCOPED_TRACE("half-bits " + std::to_string(e));
            Form form(random, size.n);
            const mpz_class sqrt2 = form.reduced(form.power(8 * size.n) * (form.power(16 * size.n) - 1));
            ASSERT_EQ(form.reduced(sqrt2 * sqrt2), 2);
            const mpz_class root = form.power(e / 2) * (e % 2 ? sqrt2 : mpz_class(1));
            // The spare element takes what it will.
            form.expect_effect({{6, form.value(1) * root}, {3, e % 2 ? -form.power(0) : form.value(3)}}, [&] {
                multiply_by_root(job, form.at(6), form.at(1), e, form.at(3));
                if (e % 2) std::fill_n(form.at(3), size.n, 0), form.at(3)[size.n] = 1;
            });
            if (HasFatalFailure()) return;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Sets, Kernels, testing::ValuesIn(test::kernel_sets()),
                         [](const auto& set) { return std::string(platform::kernel_set_name(set.param)); });

} // namespace
