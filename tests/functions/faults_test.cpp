// Single flipped bits in the middle of runs: in a number, a forward form or any other memory that a run works on, at
// any of its steps. A status node flips them, since a run shows each step before it takes it.

#include "functions/fault_node.h"
#include "functions/functions_support.h"

#include <algorithm>
#include <regex>

namespace {

using namespace test;

/// What became of a run with a flipped bit.
enum class Fate { caught, harmless, silent };

struct Tally {
    std::size_t caught = 0, harmless = 0, silent = 0;

    void count(Fate fate) { ++(fate == Fate::caught ? caught : fate == Fate::harmless ? harmless : silent); }
    std::string text() const {
        return std::to_string(caught) + " caught, " + std::to_string(harmless) + " harmless, " + std::to_string(silent)
               + " silent";
    }
};

/// By when bits were flipped.
struct Tallies {
    Tally tested; // before the last level, or in a number as it begins: a residual is tested afterwards
    Tally last;   // later: only residues modulo 2^61 - 1 can tell
};

class Faults : public testing::Test {
protected:
    /// Flips one bit in each of `rounds` runs, whose last level shows `last_steps` steps. Later steps come more often:
    /// they use most of the storage.
    Tallies flip(const Planned& planned, const Real& value, std::size_t p, std::size_t last_steps, int rounds) {
        const std::size_t steps = count_steps(planned);
        Tallies tallies;
        for (int i = 0; i < rounds; ++i) {
            const std::size_t step = steps - 1 - random() % (1 + random() % steps);
            const bool begins = step == steps - last_steps;
            Storage storage(planned);
            FaultNode node(step, [&] { flip_bit(storage, begins ? 2 : 3); });
            const Fate fate = fate_of(storage, planned, node, value, p);
            (begins || step < steps - last_steps ? tallies.tested : tallies.last).count(fate);
        }
        return tallies;
    }

private:
    std::size_t count_steps(const Planned& planned) {
        Storage storage(planned);
        FaultNode node(~std::size_t{0}, [] {});
        storage.run(planned, products.pars, &node);
        return node.steps();
    }

    /// A bit of the result's storage, of the other numbers' or, with three areas, of the scratch.
    void flip_bit(Storage& storage, std::size_t count) {
        std::byte* const areas[] = {reinterpret_cast<std::byte*>(storage.result.f.buffer), storage.buffer.p,
                                    storage.memory.p};
        const std::size_t sizes[] = {storage.result.f.capacity * sizeof(zvp::wtype), storage.buffer.bytes,
                                     storage.memory.bytes};
        const std::size_t area = random() % count;
        areas[area][random() % sizes[area]] ^= std::byte{1} << random() % 8;
    }

    /// Harmless is what leaves the result right to W^-p, guard words not counted.
    Fate fate_of(Storage& storage, const Planned& planned, FaultNode& node, const Real& value, std::size_t p) {
        try {
            storage.run(planned, products.pars, &node);
        } catch (const zvp::AlgorithmFailedException& failure) {
            expect_known(failure);
            return Fate::caught;
        }
        const BigFloat& T = storage.result.f;
        if (T.L == 0 || T.T[T.L - 1] == 0 || !T.sign) return Fate::silent;
        return error_of(T, value, p).relative < 16 ? Fate::harmless : Fate::silent;
    }

    static void expect_known(const zvp::AlgorithmFailedException& failure) {
        static const std::regex function("(Reciprocal|InvsqrtFloat|InvsqrtWord)_BigFloatR(_E)?::run\\(\\)|"
                                         "Division_BigFloatR::run\\(\\)");
        static const std::regex message("(Under|Over)-Estimate -> Convergence Failure:\n    Maximum Error = -?\\d+\n"
                                        "    Actual Error  = -?\\d+|Convergence Failure:\n    top = \\d+|"
                                        "Convergence Failure:\n    topA = \\d+\n    topB = \\d+|Number Hash Mismatch|"
                                        "Modular redundancy check failed\\.");
        EXPECT_TRUE(std::regex_match(failure.function, function)) << failure.function;
        EXPECT_TRUE(std::regex_match(failure.message, message)) << failure.message;
    }

    testing::ScopedTrace trace{__FILE__, __LINE__, seed_trace()};

protected:
    std::mt19937_64 random{seed()};
    Products products{10'000};
};

/// Every fault is found or does no harm.
void expect_found(const Tallies& tallies, const std::string& name) {
    SCOPED_TRACE(name);
    testing::Test::RecordProperty(name + "_tested", tallies.tested.text());
    testing::Test::RecordProperty(name + "_last", tallies.last.text());
    EXPECT_EQ(tallies.tested.silent, 0u) << tallies.tested.text();
    EXPECT_EQ(tallies.last.silent, 0u) << tallies.last.text();
    EXPECT_GT(tallies.tested.caught, 0u) << "or the flips missed what matters";
    EXPECT_GT(tallies.last.caught, 0u) << "or the flips missed what matters";
}

TEST_F(Faults, FlippedBitsAreFound) {
    constexpr int rounds = 600;
    for (const std::size_t p : {60u, 200u, 701u}) {
        SCOPED_TRACE(p);
        const std::string length = std::to_string(p);
        Words words(p + 2);
        for (auto& x : words) x = static_cast<zvp::wtype>(random()) | 1;
        const Number A(words, -3);
        std::shuffle(words.begin(), words.end(), random);
        const Number N(words, 5);
        const Number X({640'320}, 0);
        Real value(2);
        true_reciprocal(value, A.f, p);
        expect_found(flip(reciprocal_of(A.f, p, 1), value, p, 2, rounds), "reciprocal_" + length);
        true_quotient(value, N.f, A.f, p);
        expect_found(flip(quotient_of(N.f, A.f, p, 1), value, p, 2, rounds), "division_" + length);
        true_invsqrt(value, A.f, p);
        expect_found(flip(invsqrt_of(A.f, p, 1), value, p, 3, rounds), "invsqrt_float_" + length);
        true_invsqrt(value, X.f, p);
        expect_found(flip(invsqrt_of(zvp::wtype{640'320}, p, 1), value, p, 2, rounds), "invsqrt_word_" + length);
    }
}

TEST_F(Faults, AShortDivisorHidesNone) {
    // A product with few words of A leaves most of the window untouched by a fault above it.
    for (const std::size_t length : {1u, 2u, 90u}) {
        Words words(length, 0);
        words.front() = 3;
        words.back() = 5;
        const Number A(words, 0);
        Real value(2);
        true_reciprocal(value, A.f, 200);
        expect_found(flip(reciprocal_of(A.f, 200, 1), value, 200, 2, 400), "short_" + std::to_string(length));
    }
}

TEST_F(Faults, ALongDivisorOfNearlyAllZerosHidesNone) {
    // A fault in the estimate moves the product by words that are nearly all zeros, too, and may spare what a window sees.
    for (const std::size_t p : {60u, 200u, 701u}) {
        for (int k = 0; k < 4; ++k) {
            Words words(p + 2, 0);
            for (int i = 0; i < 3; ++i) words[random() % words.size()] = static_cast<zvp::wtype>(random());
            words.back() = 5;
            const Number A(words, -9);
            Real value(2);
            const std::string name = std::to_string(p) + "_" + std::to_string(k);
            true_reciprocal(value, A.f, p);
            expect_found(flip(reciprocal_of(A.f, p, 1), value, p, 2, 200), "zeros_" + name);
            true_invsqrt(value, A.f, p);
            expect_found(flip(invsqrt_of(A.f, p, 1), value, p, 3, 200), "zeros_sqrt_" + name);
        }
    }
}

} // namespace
