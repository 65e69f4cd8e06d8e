// Watched numbers: the residue that follows from the operands is that of the words, unless something went wrong.

#include "app/console/recovered_errors.h"
#include "app/failure/exceptions.h"
#include "multiply/tables/algorithm_table.h"
#include "numbers/big_float_support.h"
#include "numbers/transforms/big_float_transform.h"
#include "numbers/transforms/transform_helper.h"
#include "parallel/tasks/framework_config.h"

#include <functional>

namespace {

using namespace test;
using zvp::BigFloatTransformR;
using zvp::TransformHelper;

constexpr std::size_t lengths[]{3, 40, 97, 300, 5'000, 40'000, 235'000}; // of an operand: all three algorithms

/// Tables and scratch for products of two numbers of n words.
class Products {
public:
    Products(std::size_t n, std::uint32_t tasks) {
        const auto& table = zvp::algorithm_table<zvp::wtype>();
        table.ensure_tables(tables, 2 * n + 16);
        table_memory.resize(tables.bytes() + 64);
        tables.place(aligned(table_memory));
        scratch.resize(table.mSBsize(2 * n + 16, tasks, true) + 64);
        pars.tds = tasks;
        pars.framework = framework.get();
        pars.tables = &tables;
        pars.M = aligned(scratch);
        pars.ML = scratch.size() - 64;
    }

    zvp::MultiplyParameters pars;

private:
    static std::byte* aligned(std::vector<std::byte>& memory) {
        return memory.data() + (64 - reinterpret_cast<std::uintptr_t>(memory.data()) % 64) % 64;
    }

    std::unique_ptr<zvp::ParallelFramework> framework = zvp::make_framework_config("pushpool")->make_framework();
    zvp::MultiplyTables tables;
    std::vector<std::byte> table_memory, scratch;
};

struct Context {
    const zvp::MultiplyParameters& pars;
    std::size_t p;
    std::function<void(std::byte* form, std::size_t bytes)> disturb = [](std::byte*, std::size_t) {}; // a kept form
};

struct Operation {
    const char* name;
    void (*run)(const Context& context, BigFloat& T, const BigFloat& A, const BigFloat& B);
};

std::int64_t lowest(const Context& c, const BigFloat& A, const BigFloat& B) {
    const auto words = [&](const BigFloat& X) { return static_cast<std::int64_t>(std::min(X.L, c.p + 2)); };
    const std::int64_t te = A.top() + B.top();
    return std::max(te - static_cast<std::int64_t>(c.p), te - words(A) - words(B));
}

constexpr Operation operations[]{
    {"set_BigFloat",
     [](const Context& c, BigFloat& T, const BigFloat& A, const BigFloat&) { T.set_BigFloat(c.p, c.pars, A); }},
    {"set_add",
     [](const Context& c, BigFloat& T, const BigFloat& A, const BigFloat& B) { T.set_add(c.p, c.pars, A, B); }},
    {"set_sub",
     [](const Context& c, BigFloat& T, const BigFloat& A, const BigFloat& B) { T.set_sub(c.p, c.pars, A, B); }},
    {"words",
     [](const Context& c, BigFloat& T, const BigFloat& A, const BigFloat&) {
         T.set_mul_uW(c.p, c.pars, A, 0xFFFF'FFF1U);
         T.mul_uW(c.pars, 12345);
         T.add_ip(77, T.exp);
         T.purturb_up(T.L / 2);
     }},
    {"mul_rr_xx",
     [](const Context& c, BigFloat& T, const BigFloat& A, const BigFloat& B) {
         const TransformHelper h(c.pars, A.L + B.L, 2);
         BigFloatTransformR::mul_rr_xx(h.pars(), h.transform(), h.M(), T, lowest(c, A, B), A.top() + B.top(), h.form(0),
                                       A, c.p, h.form(1), B, c.p);
     }},
    {"mul_rf_xf",
     [](const Context& c, BigFloat& T, const BigFloat& A, const BigFloat& B) {
         const TransformHelper h(c.pars, A.L + B.L, 2);
         BigFloatTransformR form;
         form.forward(h.pars(), h.transform(), h.M(), B, c.p, h.form(1));
         c.disturb(h.form(1), h.transform().transform_bytes);
         BigFloatTransformR::mul_rf_xf(h.pars(), h.transform(), h.M(), T, lowest(c, A, B), A.top() + B.top(), h.form(0),
                                       A, c.p, form);
     }},
    {"inverse_fmul",
     [](const Context& c, BigFloat& T, const BigFloat& A, const BigFloat& B) {
         const TransformHelper h(c.pars, A.L + B.L, 2);
         BigFloatTransformR a, b;
         a.forward(h.pars(), h.transform(), h.M(), A, c.p, h.form(0));
         b.forward(h.pars(), h.transform(), h.M(), B, c.p, h.form(1));
         c.disturb(h.form(0), h.transform().transform_bytes);
         a.inverse_fmul(h.pars(), h.M(), T, c.p, b);
     }},
    {"sqr_rx_xf",
     [](const Context& c, BigFloat& T, const BigFloat& A, const BigFloat&) {
         const TransformHelper h(c.pars, 2 * A.L, 2);
         BigFloatTransformR form;
         BigFloatTransformR::sqr_rx_xf(h.pars(), h.transform(), h.M(), T, lowest(c, A, A), 2 * A.top(), h.form(0), A,
                                       c.p, h.form(1), form);
     }},
    {"inverse_fsqr",
     [](const Context& c, BigFloat& T, const BigFloat& A, const BigFloat&) {
         const TransformHelper h(c.pars, 2 * A.L, 2);
         BigFloatTransformR form;
         form.forward(h.pars(), h.transform(), h.M(), A, c.p, h.form(0));
         c.disturb(h.form(0), h.transform().transform_bytes);
         form.inverse_fsqr(h.pars(), h.M(), T, lowest(c, A, A), 2 * A.top(), h.form(1));
     }},
};

TEST(WatchedFloats, TheResidueOfOperandsBecomesThatOfTheResult) {
    std::mt19937_64 random(seed());
    for (const std::size_t n : lengths)
        for (const std::uint32_t tasks : {1U, 3U}) {
            Products products(n, tasks);
            for (const std::size_t p : {n / 2 + 1, n - 1, n + n / 3, 2 * n + 2}) {
                Number A = random_number(random, n, 0, 5), B = random_number(random, n - n / 7, 3, n / 2);
                A.f.watch(products.pars);
                B.f.watch(products.pars);
                for (const Operation& operation : operations) {
                    SCOPED_TRACE(testing::Message()
                                 << operation.name << ", " << n << " words, p = " << p << ", " << tasks << " tasks");
                    Number T(2 * n + p + 16);
                    operation.run({products.pars, p}, T.f, A.f, B.f);
                    EXPECT_TRUE(T.f.watched);
                    EXPECT_NO_THROW(T.f.check_hash("", products.pars));
                    B.f.watched = false;
                    operation.run({products.pars, p}, T.f, B.f, B.f);
                    EXPECT_FALSE(T.f.watched);
                    B.f.watched = true;
                }
            }
        }
}

/// A range of a long product may miss carries from below, more or less of them as its tasks take from each other.
Words above_guards(Words words) {
    words.erase(words.begin(), words.begin() + std::min<std::ptrdiff_t>(2, std::ssize(words)));
    return words;
}

/// Whether a result that isn't `right` is found out.
void expect_found(const std::function<void(BigFloat&)>& run, const Words& right, std::size_t room,
                  const zvp::MultiplyParameters& pars, int& found) {
    Number T(room);
    bool thrown = false;
    try {
        run(T.f);
        T.f.check_hash("", pars);
    } catch (const zvp::AlgorithmFailedException&) {
        thrown = true;
    }
    found += thrown;
    EXPECT_TRUE(thrown || above_guards(words_of(T.f)) == above_guards(right));
}

TEST(WatchedFloats, AFlippedBitInAnOperandOrAKeptFormIsFoundOut) {
    std::mt19937_64 random(seed());
    const auto flip = [&](std::byte* bytes, std::size_t n) { bytes[random() % n] ^= std::byte(1U << random() % 8); };
    for (const std::size_t n : lengths) {
        Products products(n, 2);
        const std::size_t p = n + n / 3, room = 2 * n + p + 16;
        int operands = 0, forms = 0;
        for (const Operation& operation : operations)
            for (int round = 0; round < (n > 100'000 ? 3 : 12); ++round) {
                SCOPED_TRACE(testing::Message() << operation.name << ", " << n << " words");
                Number A = random_number(random, n), B = random_number(random, n - n / 7, 3);
                A.f.watch(products.pars);
                B.f.watch(products.pars);
                Number right(room);
                operation.run({products.pars, p}, right.f, A.f, B.f);
                const Context disturbed{products.pars, p, flip};
                expect_found([&](BigFloat& T) { operation.run(disturbed, T, A.f, B.f); }, words_of(right.f), room,
                             products.pars, forms);
                flip(reinterpret_cast<std::byte*>(A.f.T), 4 * A.f.L - 4);
                expect_found(
                    [&](BigFloat& T) {
                        operation.run({products.pars, p}, T, A.f, B.f);
                    },
                    words_of(right.f), room, products.pars, operands);
            }
        EXPECT_GT(operands, 20) << n;
        EXPECT_GT(forms, 0) << n;
    }
}

TEST(WatchedFloats, AWindowOfAFoldedProductIsWatchedFromWhenItIsWritten) {
    std::mt19937_64 random(seed());
    int folded_products = 0;
    for (const std::size_t n : {300U, 5'000U, 40'000U, 240'000U, 300'000U}) {
        Products products(n, 3);
        Number A = random_number(random, n), B = random_number(random, n), T(2 * n);
        const TransformHelper h(products.pars, 2 * n - n / 2, 2);
        const std::size_t C = h.transform().capacity_bits / 32;
        if (C >= 2 * n) continue;
        ++folded_products;
        const auto folded = static_cast<std::int64_t>(2 * n - C);
        const std::int64_t base = A.f.exp + B.f.exp;
        BigFloatTransformR::mul_rr_xx(h.pars(), h.transform(), h.M(), T.f, base + folded + 5,
                                      A.f.top() + B.f.top() - folded, h.form(0), A.f, n, h.form(1), B.f, n);
        EXPECT_TRUE(T.f.watched);
        EXPECT_NO_THROW(T.f.check_hash("", products.pars)) << n;
        T.f.T[T.f.L / 3] ^= 64;
        EXPECT_THROW(T.f.check_hash("", products.pars), zvp::AlgorithmFailedException) << n;
    }
    EXPECT_GE(folded_products, 3);
}

/// Fails its first products, as the check of a transform does.
class FailingTransform final : public zvp::Transform {
public:
    FailingTransform(const zvp::Transform& right_, int failures_) : right(right_), failures(failures_) {
        capacity_bits = right.capacity_bits;
        transform_bytes = right.transform_bytes;
        scratch_bytes = right.scratch_bytes;
    }
    const char* name() const override { return right.name(); }
    using Pars = const zvp::MultiplyParameters&;
    using c32i = zvp::c32i;
    using c64i = zvp::c64i;
    void forward(Pars p, std::byte* M, std::byte* X, const c32i* A, std::size_t AL) const override {
        right.forward(p, M, X, A, AL);
    }
    void forward(Pars p, std::byte* M, std::byte* X, const c64i* A, std::size_t AL) const override {
        right.forward(p, M, X, A, AL);
    }
    void inverse_fsqr(Pars p, std::byte* M, std::byte* Xd, std::byte* Xs, c32i* T, std::size_t s,
                      std::size_t e) const override {
        right.inverse_fsqr(p, M, Xd, Xs, T, s, e);
        fail();
    }
    void inverse_fsqr(Pars, std::byte*, std::byte*, std::byte*, c64i*, std::size_t, std::size_t) const override {}
    void inverse_fmul(Pars p, std::byte* M, std::byte* Xa, const std::byte* Xb, c32i* T, std::size_t s,
                      std::size_t e) const override {
        right.inverse_fmul(p, M, Xa, Xb, T, s, e);
        fail();
    }
    void inverse_fmul(Pars, std::byte*, std::byte*, const std::byte*, c64i*, std::size_t, std::size_t) const override {}
    bool compatible(const Transform& other) const override { return right.compatible(other); }
    std::optional<std::uint64_t> left_out(const std::byte* M, std::size_t length, std::size_t s,
                                          std::size_t e) const override {
        return right.left_out(M, length, s, e);
    }

private:
    void fail() const {
        if (failures-- > 0) throw zvp::ConvolutionFailedException("product", "Modular redundancy check failed.");
    }

    const zvp::Transform& right;
    mutable int failures;
};

TEST(WatchedFloats, AProductThatFailsOnceIsMadeAgainFromIntactOperands) {
    std::mt19937_64 random(seed());
    const std::size_t n = 3000;
    Products products(n, 1);
    Number A = random_number(random, n), B = random_number(random, n - 100);
    A.f.watch(products.pars);
    B.f.watch(products.pars);
    const TransformHelper h(products.pars, 2 * n, 2);
    const auto multiply = [&](BigFloat& T, int failures) {
        const FailingTransform failing(h.transform(), failures);
        BigFloatTransformR::mul_rr_xx(h.pars(), failing, h.M(), T, A.f.exp + B.f.exp, A.f.top() + B.f.top(), h.form(0),
                                      A.f, n, h.form(1), B.f, n);
    };
    Number right(2 * n), T(2 * n);
    multiply(right.f, 0);
    const std::uint64_t before = zvp::recovered_errors();
    testing::internal::CaptureStdout();
    multiply(T.f, 1);
    EXPECT_NE(testing::internal::GetCapturedStdout().find(
                  "BigFloatTransformR::mul_rr_xx(): a product of 3,000 x 2,900 words"),
              std::string::npos);
    EXPECT_EQ(words_of(T.f), words_of(right.f));
    EXPECT_EQ(zvp::recovered_errors(), before + 1);

    testing::internal::CaptureStdout();
    EXPECT_THROW(multiply(T.f, 2), zvp::ConvolutionFailedException);
    testing::internal::GetCapturedStdout();
    A.f.T[17] ^= 4; // an operand that was damaged
    EXPECT_THROW(multiply(T.f, 1), zvp::ConvolutionFailedException);
    EXPECT_EQ(zvp::recovered_errors(), before + 2);
}

} // namespace
