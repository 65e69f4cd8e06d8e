// Division by a word against GMP, and the check of the blocks against faults between the tasks.

#include "multiply/words/shoup_divider.h"

#include "app/failure/exceptions.h"
#include "operands.h"

#include <functional>
#include <numeric>

namespace {

using namespace zvp;
using test::Integer;
using test::ones;
using test::Target;

template <class Word>
struct Shoup : testing::Test {
    std::mt19937_64 random{test::seed()};

    std::vector<Word> divisors() {
        const Word half = static_cast<Word>(Word{1} << (word_bits<Word> - 1));
        const Word largest = static_cast<Word>(half - 1);
        std::vector<Word> list{3,
                               5,
                               6,
                               7,
                               10,
                               641,
                               1'000'000'007,
                               largest,
                               static_cast<Word>(largest - 1),
                               static_cast<Word>(half / 2 + 1),
                               static_cast<Word>(half / 2 - 1),
                               static_cast<Word>(half / 4 * 3)};
        while (list.size() < 24) {
            const Word d = static_cast<Word>(test::random_up_to_bits(random, word_bits<Word> - 1));
            if ((d & (d - 1)) != 0) list.push_back(d);
        }
        return list;
    }
};
using WordKinds = testing::Types<c32i, c64i>;
TYPED_TEST_SUITE(Shoup, WordKinds);

TYPED_TEST(Shoup, RefusesPowersOfTwoAndLargeDivisors) {
    using Word = TypeParam;
    const auto message_of = [](const std::function<void()>& call) -> std::string {
        try {
            call();
        } catch (const InvalidParametersException& e) {
            return e.function + " " + e.message;
        }
        return "";
    };
    const Word half = static_cast<Word>(Word{1} << (word_bits<Word> - 1));
    for (const Word d : {Word{0}, Word{1}, Word{2}, Word{4}, static_cast<Word>(half / 2)})
        EXPECT_EQ(message_of([=] { ShoupDivider<Word>{d}; }), "ShoupDivider() Untested with power-of-two.") << d;
    for (const Word d : {half, static_cast<Word>(half + 1), ones<Word>})
        EXPECT_EQ(message_of([=] { ShoupDivider<Word>{d}; }), "ShoupDivider() Divisor is too large.") << d;

    const ShoupDivider<Word> seven(7);
    Word T[2000] = {};
    const test::Contexts contexts;
    for (const auto& c : contexts.cases) {
        const ParallelContext& ctx = c.ctx;
        EXPECT_EQ(message_of([&] { bp_div_ex(seven, T, 2000, Word{7}, ctx); }), "divmod() Top word is too large.");
        EXPECT_EQ(message_of([&] { bp_div_np(seven, T, T, 2000, Word{7}, ctx); }), "divmod(A) Top word is too large.");
    }
}

TYPED_TEST(Shoup, QuotientAndRemainderRestoreTheNumerator) {
    using Word = TypeParam;
    SCOPED_TRACE(test::seed_trace());
    for (const Word d : this->divisors()) {
        const ShoupDivider<Word> D(d);
        std::vector<std::size_t> lengths(40);
        std::iota(lengths.begin(), lengths.end(), std::size_t{0});
        lengths.insert(lengths.end(), {127, 128, 129, 255, 256, 257, 511, 1024, 1025, 4097, 10'000});
        for (const std::size_t n : lengths) {
            SCOPED_TRACE("d " + std::to_string(d) + ", n " + std::to_string(n));
            const unsigned kind = this->random() % 3;
            const auto A = kind == 0 ? test::Words<Word>(n, ones<Word>) : test::piecewise<Word>(this->random, n);
            const Word r = kind == 0 ? d - 1 : kind == 1 ? 0 : static_cast<Word>(this->random() % d);
            Target<Word> Q(A, n % 16), E(n, n % 16);
            const Word remainder = D.divmod(Q, Q, n, r);
            const Word exact = D.divmod(E, n, r);
            const Integer top = Integer(r).template times_power<Word>(n);
            ASSERT_LT(remainder, d);
            ASSERT_LT(exact, d);
            ASSERT_EQ(Q.value() * Integer(d) + Integer(remainder), top + test::value(A));
            ASSERT_EQ(E.value() * Integer(d) + Integer(exact), top);
            ASSERT_EQ(D.mod(A.data(), n, r), remainder);
            Target<Word> one(n, 0);
            ASSERT_EQ(D.powmod(n), D.divmod(one, n, Word{1}));
            ASSERT_TRUE(Q.guards_stand() && E.guards_stand());
        }
    }
}

TYPED_TEST(Shoup, BlocksGiveWhatTheSerialLoopGives) {
    using Word = TypeParam;
    SCOPED_TRACE(test::seed_trace());
    const test::Contexts contexts;
    const auto divisors = this->divisors();
    for (const auto& [name, ctx] : contexts.cases) {
        for (const std::size_t n : {999, 1000, 1001, 1999, 2000, 2001, 2999, 3000, 3001, 64'000, 64'001, 90'017}) {
            const Word d = divisors[this->random() % divisors.size()];
            const Word r =
                std::array<Word, 3>{0, static_cast<Word>(d - 1), static_cast<Word>(this->random() % d)}[n % 3];
            SCOPED_TRACE(name + ", n " + std::to_string(n) + ", d " + std::to_string(d) + ", r " + std::to_string(r));
            const ShoupDivider<Word> D(d);
            const auto A = test::piecewise<Word>(this->random, n, 1000);
            Target<Word> Q(A, n % 16), E(n, n % 16), S(n, 0);
            const Word remainder = bp_div_np(D, Q, Q, n, r, ctx);
            const Word exact = bp_div_ex(D, E, n, r, ctx);
            ASSERT_EQ(D.divmod(S, n, r), exact);
            ASSERT_EQ(S.words(), E.words());
            const Integer top = Integer(r).template times_power<Word>(n);
            ASSERT_EQ(Q.value() * Integer(d) + Integer(remainder), top + test::value(A));
            ASSERT_LT(remainder, d);
            ASSERT_TRUE(Q.guards_stand() && E.guards_stand());
        }
    }
}

/// Runs the tasks one by one, and the fault before a given one, counted over all calls.
struct FaultyFramework final : ParallelFramework {
    FaultyFramework(std::uint32_t task, std::function<void(std::uint32_t)> inject)
        : tasks_left(task), fault(std::move(inject)) {}

    void run_in_parallel(BasicAction& action, std::uint32_t low, std::uint32_t high) override {
        for (std::uint32_t i = low; i < high; ++i) {
            if (tasks_left-- == 0) fault(i);
            action.run(i);
        }
    }
    void run_in_parallel(BasicAction& first, BasicAction& second) override {
        first.run(0);
        second.run(0);
    }

    std::uint32_t tasks_left;
    std::function<void(std::uint32_t)> fault;
};

/// Whether the call ends by the check of the blocks, or of the lanes within one.
bool caught(const std::string& function, const std::function<void()>& call) {
    try {
        call();
    } catch (const AlgorithmFailedException& e) {
        EXPECT_TRUE(e.function == function || e.function.substr(0, 6) == "divmod") << e.function;
        EXPECT_EQ(e.message, "Mismatching block residuals.");
        return true;
    }
    return false;
}

TYPED_TEST(Shoup, AFlippedNumeratorBitBetweenThePassesIsCaught) {
    using Word = TypeParam;
    SCOPED_TRACE(test::seed_trace());
    constexpr std::uint32_t blocks = 8;
    constexpr std::size_t n = 8 * 1000 - 300; // the last block is shorter
    const auto divisors = this->divisors();
    for (unsigned round = 0; round < 400; ++round) {
        const Word d = divisors[this->random() % divisors.size()];
        const std::size_t place = this->random() % n;
        const unsigned bit = this->random() % word_bits<Word>;
        const std::uint32_t block = static_cast<std::uint32_t>(place / 1000);
        SCOPED_TRACE("d " + std::to_string(d) + ", word " + std::to_string(place) + ", bit " + std::to_string(bit));
        const ShoupDivider<Word> D(d);
        auto A = test::piecewise<Word>(this->random, n);
        test::Words<Word> T(n);
        // Behind the residue of its block, and before its division.
        const std::uint32_t task = block + 1 + static_cast<std::uint32_t>(this->random() % blocks);
        bool injected = false;
        FaultyFramework framework(task, [&](std::uint32_t) {
            A[place] ^= static_cast<Word>(Word{1} << bit);
            injected = true;
        });
        const ParallelContext ctx{blocks, &framework};
        const bool in_place = round % 2;
        EXPECT_TRUE(caught("bp_div_np(A)", [&] {
            bp_div_np(D, in_place ? A.data() : T.data(), A.data(), n, static_cast<Word>(d - 1), ctx);
        }));
        ASSERT_TRUE(injected);
    }
}

TYPED_TEST(Shoup, AFlippedBitOfTheReciprocalNeverGivesAWrongQuotient) {
    using Word = TypeParam;
    SCOPED_TRACE(test::seed_trace());
    constexpr std::size_t n = 4000;
    unsigned caught_count = 0;
    for (unsigned round = 0; round < 400; ++round) {
        // Persistent faults end in any remainder: only a large divisor makes the right one unlikely.
        const Word d =
            static_cast<Word>(this->random() >> 2 >> (64 - word_bits<Word>) | Word{1} << (word_bits<Word> - 2) | 1);
        ShoupDivider<Word> D(d);
        const unsigned byte = this->random() % sizeof(D), bit = this->random() % 8;
        SCOPED_TRACE("d " + std::to_string(d) + ", byte " + std::to_string(byte) + ", bit " + std::to_string(bit));
        FaultyFramework framework(static_cast<std::uint32_t>(this->random() % 4), [&](std::uint32_t) {
            reinterpret_cast<unsigned char*>(&D)[byte] ^= static_cast<unsigned char>(1 << bit);
        });
        test::Words<Word> T(n);
        Word remainder = 0;
        const Word r = static_cast<Word>(this->random() % d);
        bool stopped = false;
        try {
            stopped = caught("bp_div_ex()", [&] { remainder = bp_div_ex(D, T.data(), n, r, {4, &framework}); });
        } catch (const InvalidParametersException&) { // a divisor that shrank
            stopped = true;
        }
        caught_count += stopped;
        if (!stopped) {
            ASSERT_EQ(test::value(T) * Integer(d) + Integer(remainder), Integer(r).template times_power<Word>(n));
        }
    }
    EXPECT_GT(caught_count, 50u); // c32i words are divided by a reciprocal of their own
}

} // namespace
