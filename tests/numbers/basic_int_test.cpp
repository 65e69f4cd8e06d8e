#include "numbers/exact_support.h"
#include "parallel/memory/malloc_allocator.h"

#include <unistd.h>

#include <algorithm>

namespace {

using namespace test;
using zvp::BasicInt;
using zvp::BasicIntO;

template <class Word>
class BasicIntOf : public testing::Test {};
TYPED_TEST_SUITE(BasicIntOf, WordKinds);

/// A number on storage of its own words and `room` more.
template <class Word>
struct Held {
    explicit Held(std::size_t capacity) : storage(capacity), x(storage.data(), capacity) {}
    explicit Held(const std::vector<Word>& words, std::size_t room = 0) : Held(words.size() + room) {
        std::copy(words.begin(), words.end(), x.T);
        x.L = words.size();
        x.hash = residue_of(value());
    }

    mpz_class value() const { return integer(x.T, x.L); }

    GuardedWords<Word> storage;
    BasicInt<Word> x;
};

template <class Word>
void expect_value(const BasicInt<Word>& x, const mpz_class& value) {
    ASSERT_LE(x.L, x.capacity);
    EXPECT_TRUE(x.L == 0 || x.T[x.L - 1] != 0);
    EXPECT_TRUE(integer(x.T, x.L) == value);
    EXPECT_EQ(zvp::normalize_hash(x.hash), residue_of(value));
    EXPECT_EQ(x.residue(), zvp::normalize_hash(x.hash));
    EXPECT_LT(x.hash, std::uint64_t{1} << 62);
}

TYPED_TEST(BasicIntOf, ConstructorSplitsTheValue) {
    for (const std::uint64_t v : {std::uint64_t{1}, (std::uint64_t{1} << 32) - 1, std::uint64_t{1} << 32,
                                  (std::uint64_t{1} << 61) - 1, std::uint64_t{1} << 61, ~std::uint64_t{0}}) {
        const BasicIntO<TypeParam> x(v);
        EXPECT_EQ(x.L, v >> 32 != 0 && sizeof(TypeParam) == 4 ? 2u : 1u);
        EXPECT_EQ(x.capacity, 4u);
        expect_value<TypeParam>(x, mpz_class(v));
    }
    EXPECT_EQ(failure_of([] { BasicIntO<TypeParam> zero(0); }),
              "UnsupportedZeroException: BasicIntO::BasicIntO() Zero was encountered.");
}

TYPED_TEST(BasicIntOf, ProductsAreExactInStorageOfJustTheirSize) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    for (int round = 0; round < 3000; ++round) {
        const std::size_t a = random() % (round % 50 ? 6 : 70), b = random() % (round % 70 ? 6 : 70);
        SCOPED_TRACE(testing::Message() << a << " x " << b);
        const Held<TypeParam> A(random_words<TypeParam>(random, a)), B(random_words<TypeParam>(random, b));
        Held<TypeParam> product(a + b), square(2 * a);
        product.x.set_mulB(A.x, B.x);
        square.x.set_sqrB(A.x);
        expect_value(product.x, A.value() * B.value());
        expect_value(square.x, A.value() * A.value());
        EXPECT_TRUE(product.storage.guards_are_intact() && square.storage.guards_are_intact());
    }
}

TYPED_TEST(BasicIntOf, SumsAndDifferencesCarryThroughAllWords) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    for (int round = 0; round < 3000; ++round) {
        const std::size_t a = 1 + random() % (round % 50 ? 5 : 70), b = random() % (a + 1);
        SCOPED_TRACE(testing::Message() << a << " +- " << b);
        Held<TypeParam> sum(random_words<TypeParam>(random, a), 1);
        Held<TypeParam> B(random_words<TypeParam>(random, b));
        if (round % 4 == 0 && b > 0) { // the sum is W^a - 1 or W^a
            for (std::size_t i = 0; i < a; ++i) sum.x.T[i] = i < b ? ~B.x.T[i] : all_ones<TypeParam>;
            sum.x.T[0] += round % 8 == 0;
            if (sum.x.T[a - 1] == 0) continue;
            sum.x.hash = residue_of(sum.value());
        }
        const mpz_class start = sum.value();
        sum.x += B.x;
        expect_value(sum.x, start + B.value());

        Held<TypeParam> difference({sum.x.T, sum.x.T + sum.x.L}, 1);
        difference.x.hash = sum.x.hash;
        difference.x -= B.x;
        expect_value(difference.x, start);
        EXPECT_TRUE(sum.storage.guards_are_intact() && difference.storage.guards_are_intact());
    }
    BasicIntO<TypeParam> doubled(~std::uint64_t{0});
    doubled += doubled;
    expect_value<TypeParam>(doubled, mpz_class(~std::uint64_t{0}) * 2);
}

/// The same value has many representatives: those whose difference is a multiple of 2^61 leave no bits for the fold.
TYPED_TEST(BasicIntOf, DifferencesTakeAnyRepresentatives) {
    constexpr std::uint64_t p = zvp::hash_modulus;
    BasicIntO<TypeParam> A(p), B(1);
    A.hash = 0;
    B.hash = p + 1;
    A -= B;
    expect_value<TypeParam>(A, mpz_class(p - 1));
    A.hash += p;
    A += B;
    A.hash += p; // almost 2^62
    B.hash = 1;
    A -= B;
    expect_value<TypeParam>(A, mpz_class(p - 1));
}

TYPED_TEST(BasicIntOf, DifferencesBelowOneAreRefused) {
    using Words = std::vector<TypeParam>;
    const std::string negative =
        "UnsupportedNegativeException: BasicInt::operator-=() A negative value was encountered.";
    const std::string zero = "UnsupportedZeroException: BasicInt::operator-=() Zero was encountered.";
    const struct {
        Words A, B;
        std::string failure;
    } cases[] = {
        {{5}, {5}, zero},        {{1, 2, 3}, {1, 2, 3}, zero},
        {{5}, {6}, negative},    {{1, 2, 3}, {2, 2, 3}, negative},
        {{5}, {1, 1}, negative}, {{0, 0, 1}, {1, 0, 1}, negative},
    };
    for (const auto& c : cases) {
        Held<TypeParam> A(c.A, 1);
        const Held<TypeParam> B(c.B);
        EXPECT_EQ(failure_of([&] { A.x -= B.x; }), c.failure);
        EXPECT_TRUE(A.storage.guards_are_intact());
    }
    BasicIntO<TypeParam> self(7);
    EXPECT_EQ(failure_of([&] { self -= self; }), zero);
}

TYPED_TEST(BasicIntOf, OneWordTooFewIsRefused) {
    const Held<TypeParam> A(std::vector<TypeParam>{1, 2, 3}), B(std::vector<TypeParam>{4, 5});
    Held<TypeParam> T(4), tight(std::vector<TypeParam>{1, 2, 3}), product(4);
    EXPECT_EQ(failure_of([&] { T.x.set_mulB(A.x, B.x); }), "BasicIntR::set_mulB() 4 5");
    EXPECT_EQ(failure_of([&] { T.x.set_sqrB(A.x); }), "BasicInt::set_sqrB() 4 6");
    EXPECT_EQ(failure_of([&] { tight.x += B.x; }), "BasicInt::operator+=() 3 4");
    EXPECT_EQ(failure_of([&] { tight.x -= B.x; }), "BasicInt::operator-=() 3 4");
    expect_value(tight.x, A.value());
    EXPECT_EQ(failure_of([&] { Held<TypeParam>(2).x.set_BasicInt(A.x); }), "BasicInt::set_BasicInt() 2 3");
    Held<TypeParam>(3).x.set_BasicInt(A.x);
    product.x.set_BasicInt(A.x);
    product.x *= Held<TypeParam>(std::vector<TypeParam>{4}).x; // three words: what a view has room for
    expect_value(product.x, A.value() * 4);
    product.x *= B.x;
    expect_value(product.x, A.value() * 4 * B.value());
    EXPECT_EQ(failure_of([&] { product.x *= B.x; }), "BasicInt::set_BasicInt() 4 5");
}

TYPED_TEST(BasicIntOf, ALongerSummandIsFatal) {
    EXPECT_EXIT(
        {
            dup2(2, 1);
            Held<TypeParam> A(std::vector<TypeParam>{9}, 1);
            A.x += Held<TypeParam>(std::vector<TypeParam>{1, 1}).x;
        },
        testing::ExitedWithCode(1), "Invalid Function Parameters:   BasicInt::operator\\+=\\(\\)");
}

TYPED_TEST(BasicIntOf, OwnersGrowAndMayBeTheirOwnOperands) {
    BasicIntO<TypeParam> x(3);
    mpz_class value = 3;
    for (int i = 0; i < 7; ++i, value *= value) x *= x;
    expect_value<TypeParam>(x, value);
    const BasicInt<TypeParam> view = x; // of storage that set_BasicInt() replaces
    x.set_BasicInt(view);
    EXPECT_EQ(x.capacity, x.L + 2);
    x += x;
    x -= BasicIntO<TypeParam>(1);
    expect_value<TypeParam>(x, 2 * value - 1);
    x.T[x.L / 2] ^= 4;
    EXPECT_NE(x.residue(), zvp::normalize_hash(x.hash)) << "a damaged word";
}

/// The heap, or nothing at all.
class Meter final : public zvp::AllocatorOf<Meter> {
public:
    static constexpr std::string_view own_key = "meter";
    static constexpr std::string_view name = "Meter";

    Meter() : AllocatorOf(zvp::platform::memory_system()) {}
    bool acquire_privileges() const override { return true; }
    std::unique_ptr<zvp::Allocation> allocate(const zvp::ParallelContext& context, unsigned alignment_bits,
                                              std::size_t bytes) const override {
        if (bytes > limit) return std::make_unique<zvp::Allocation>();
        asked.push_back(bytes);
        return heap.allocate(context, alignment_bits, bytes);
    }
    std::uint32_t print_menu_rows(std::uint32_t row) const override { return row; }
    void menu_select(std::uint32_t) override {}

    std::size_t limit = 1000;
    mutable std::vector<std::size_t> asked;

private:
    void save(zvp::Object&, bool) const override {}
    zvp::MallocAllocator heap;
};

TYPED_TEST(BasicIntOf, MemoryComesFromTheGivenAllocator) {
    Meter meter;
    BasicIntO<TypeParam> x(5, meter);
    x.set_BasicInt(BasicIntO<TypeParam>(7));
    x *= x;
    EXPECT_EQ(meter.asked,
              (std::vector<std::size_t>{4 * sizeof(TypeParam), 3 * sizeof(TypeParam), 4 * sizeof(TypeParam)}));
    meter.limit = 0;
    EXPECT_EQ(failure_of([&] { x *= x; }), "MemoryAllocationFailedException: BasicIntO::allocate() ");
    expect_value<TypeParam>(x, 49);
}

} // namespace
