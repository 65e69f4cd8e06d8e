#include "numbers/exact_support.h"
#include "numbers/transforms/exact_float_transform.h"
#include "numbers/transforms/transform_bench.h"

#include <functional>

namespace {

using namespace test;

template <class Word>
class ExactTransformOf : public testing::Test {
protected:
    using Form = zvp::ExactFloatTransformR<Word>;
    using Float = zvp::ExactFloat<Word>;
    using Bench = WordBench<Word>;

    /// An operation that makes the product of two operands, of which it may use but the first, with the name in errors.
    struct Operation {
        const char* name;
        bool square;
        std::function<void(Bench&, Float& T, const Float& A, const Float& B)> run;
    };

    /// A form of A at X.
    Form form_of(Bench& b, const Float& A, std::byte* X) {
        Form form;
        form.forward(multiplier.pars, b.tr, b.M, A, X);
        return form;
    }

    std::vector<Operation> whole_operations() {
        const auto& pars = multiplier.pars;
        return {
            {"mul_rr_xx()", false,
             [&](Bench& b, Float& T, const Float& A, const Float& B) {
                 Form::mul_rr_xx(pars, b.tr, b.M, T, b.Xa, A, b.Xb, B);
             }},
            {"mul_rr_xf()", false,
             [&](Bench& b, Float& T, const Float& A, const Float& B) {
                 Form out;
                 Form::mul_rr_xf(pars, b.tr, b.M, T, b.Xa, A, b.Xb, B, out);
                 expect_form(out, b, B);
             }},
            {"mul_rf_xf()", false,
             [&](Bench& b, Float& T, const Float& A, const Float& B) {
                 const Form kept = form_of(b, B, b.Xb);
                 for (int i = 0; i < 2; ++i) Form::mul_rf_xf(pars, b.tr, b.M, T, b.Xa, A, kept);
             }},
            {"inverse_fmul()", false,
             [&](Bench& b, Float& T, const Float& A, const Float& B) {
                 Form a;
                 const Form kept = form_of(b, B, b.Xb);
                 for (int i = 0; i < 2; ++i) {
                     a = form_of(b, A, b.Xa);
                     a.inverse_fmul(pars, b.M, T, kept);
                 }
                 EXPECT_EQ(a.X != nullptr, A.L > 0 && B.L == 0);
             }},
            {"inverse_fmul()", true,
             [&](Bench& b, Float& T, const Float& A, const Float&) {
                 Form a = form_of(b, A, b.Xa);
                 a.inverse_fmul(pars, b.M, T, a);
             }},
            {"inverse_fsqr()", true,
             [&](Bench& b, Float& T, const Float& A, const Float&) {
                 Form a = form_of(b, A, b.Xa);
                 a.inverse_fsqr(pars, b.M, T, b.Xb);
                 expect_form(a, b, A);
                 a.inverse_fsqr(pars, b.M, T, b.Xa);
                 EXPECT_EQ(a.X, nullptr);
             }},
            {"sqr_r_x()", true,
             [&](Bench& b, Float& T, const Float& A, const Float&) { Form::sqr_r_x(pars, b.tr, b.M, T, b.Xa, A); }},
            {"sqr_rx_xf()", true,
             [&](Bench& b, Float& T, const Float& A, const Float&) {
                 Form out;
                 Form::sqr_rx_xf(pars, b.tr, b.M, T, b.Xa, A, b.Xb, out);
                 expect_form(out, b, A);
             }},
        };
    }

    /// The forms that keep the words from `low` on.
    std::vector<Operation> cutting_operations(std::int64_t low) {
        const auto& pars = multiplier.pars;
        return {
            {"mul_rr_xx(exp)", false,
             [&, low](Bench& b, Float& T, const Float& A, const Float& B) {
                 Form::mul_rr_xx(pars, b.tr, b.M, T, low, b.Xa, A, b.Xb, B);
             }},
            {"mul_rr_xf(exp)", false,
             [&, low](Bench& b, Float& T, const Float& A, const Float& B) {
                 Form out;
                 Form::mul_rr_xf(pars, b.tr, b.M, T, low, b.Xa, A, b.Xb, B, out);
                 expect_form(out, b, B);
             }},
            {"mul_rf_xf(exp)", false,
             [&, low](Bench& b, Float& T, const Float& A, const Float& B) {
                 Form::mul_rf_xf(pars, b.tr, b.M, T, low, b.Xa, A, form_of(b, B, b.Xb));
             }},
        };
    }

    static void expect_form(const Form& form, const Bench& bench, const Float& A) {
        EXPECT_EQ(form.params, &bench.tr);
        EXPECT_EQ(form.hash, A.hash);
        const bool zero = A.L == 0 && form.L == 0 && !form.X;
        EXPECT_TRUE(zero
                    || (form.X && form.L == A.L && form.exp == A.exp && form.top == A.top() && form.sign == A.sign));
    }

    std::vector<std::size_t> lengths() const {
        std::vector<std::size_t> lengths = {2, 20, 101, 333, 2000};
        for (const auto& row : zvp::algorithm_table<Word>().rows)
            for (const std::uint64_t n : {row.limit, row.limit + 1})
                if (n <= std::min<std::size_t>(multiplier.reach, 460'000)) lengths.push_back(n);
        return lengths;
    }

    WordMultiplier<Word> multiplier;
};
TYPED_TEST_SUITE(ExactTransformOf, WordKinds);

TYPED_TEST(ExactTransformOf, WholeProductsAreExactAndCarryTheirResidue) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    for (const std::size_t length : this->lengths()) {
        for (int round = 0; round < (length < 5000 ? 8 : 1); ++round) {
            const std::size_t half = length / 2, a = round % 2 ? half : 1 + random() % half;
            SCOPED_TRACE(testing::Message() << length << " words, " << a << " x " << length - a);
            const ExactNumber<TypeParam> A(random_words<TypeParam>(random, a), -3, random() % 2),
                B(random_words<TypeParam>(random, length - a), 40, random() % 2);
            WordBench<TypeParam> bench(this->multiplier.pars, length);
            for (const auto& operation : this->whole_operations()) {
                SCOPED_TRACE(operation.name);
                const mpz_class x = in_units(A.f, -3), y = operation.square ? x : in_units(B.f, 40);
                const std::size_t needed = operation.square ? 2 * a : length;
                ExactNumber<TypeParam> T(needed), tight(needed - 1);
                operation.run(bench, T.f, A.f, B.f);
                expect_value(T, x * y, operation.square ? -6 : 37);
                EXPECT_EQ(failure_of([&] { operation.run(bench, tight.f, A.f, B.f); }),
                          std::string("ExactFloatTransformR::") + operation.name + " " + std::to_string(needed - 1)
                              + " " + std::to_string(needed));
                EXPECT_TRUE(tight.guards_are_intact() && tight.f.L == 0);
                bench.expect_intact();
            }
        }
    }
}

TYPED_TEST(ExactTransformOf, CutProductsKeepTheWordsAboveThePosition) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    constexpr unsigned w = zvp::word_bits<TypeParam>;
    for (const std::size_t length : this->lengths()) {
        const std::size_t a = 1 + random() % (length - 1);
        const ExactNumber<TypeParam> A(random_words<TypeParam>(random, a), -3, random() % 2),
            B(random_words<TypeParam>(random, length - a), 40, random() % 2);
        WordBench<TypeParam> bench(this->multiplier.pars, length);
        const auto P = static_cast<std::int64_t>(length);
        const mpz_class magnitude = abs(in_units(A.f, -3) * in_units(B.f, 40));
        std::vector<std::int64_t> cuts = {0, P / 3, P - 1};
        if (length < 5000) cuts.insert(cuts.end(), {-7, 1, P / 2 + 1, P, P + 5});
        for (const std::int64_t cut : cuts) {
            SCOPED_TRACE(testing::Message() << length << " words, A " << a << ", cut " << cut);
            const mpz_class kept = magnitude >> w * std::max<std::int64_t>(cut, 0);
            const std::size_t needed = cut <= 0 ? length : cut >= P ? 0 : length - static_cast<std::size_t>(cut);
            for (const auto& operation : this->cutting_operations(37 + cut)) {
                SCOPED_TRACE(operation.name);
                ExactNumber<TypeParam> T(needed);
                operation.run(bench, T.f, A.f, B.f);
                EXPECT_TRUE(T.guards_are_intact() && (T.f.L == 0 || T.f.T[T.f.L - 1] != 0));
                const mpz_class lost = kept - integer(T.f.T, T.f.L);
                EXPECT_TRUE(lost >= 0 && lost <= (bench.drops_carries() && cut > 0 ? 2 : 0)) << lost;
                EXPECT_EQ(T.f.exp, T.f.L > 0 ? 37 + std::max<std::int64_t>(cut, 0) : 0);
                EXPECT_EQ(T.f.sign, T.f.L > 0 ? A.f.sign == B.f.sign : cut < P) << "zero by cutting has sign 1";
                EXPECT_EQ(T.f.hash, cut > 0 ? 0 : zvp::mul_mod(A.f.hash, B.f.hash));
                bench.expect_intact();
                if (needed == 0) continue;
                ExactNumber<TypeParam> tight(needed - 1);
                EXPECT_EQ(failure_of([&] { operation.run(bench, tight.f, A.f, B.f); }),
                          std::string("ExactFloatTransformR::") + operation.name + " " + std::to_string(needed - 1)
                              + " " + std::to_string(needed));
            }
        }
    }
}

TYPED_TEST(ExactTransformOf, TheHashTellsOfADamagedForm) {
    using Kept = typename TestFixture::Form;
    const auto& pars = this->multiplier.pars;
    for (const std::size_t length : {60u, 2000u}) {
        WordBench<TypeParam> bench(pars, length);
        const ExactNumber<TypeParam> A(std::vector<TypeParam>(length / 2, 3), 9, false);
        ExactNumber<TypeParam> T(length);
        Kept form;
        form.forward(pars, bench.tr, bench.M, A.f, bench.Xa);
        form.X[63] ^= std::byte{0x40}; // a digit of "BKT", an exponent's bit of the floating-point transform
        form.inverse_fsqr(pars, bench.M, T.f, bench.Xb);
        EXPECT_NE(zvp::normalize_hash(T.f.hash), T.f.residue({}));
    }
}

TYPED_TEST(ExactTransformOf, ZeroOperandsGiveZeroAndKeepForms) {
    using Kept = typename TestFixture::Form;
    const auto& pars = this->multiplier.pars;
    const ExactNumber<TypeParam> zero({}, 0, true), A({7, 9}, 4, false);
    for (const std::size_t length : {40u, 2000u}) {
        for (const auto* operand : {&zero, &A}) {
            const ExactNumber<TypeParam>& other = operand == &zero ? A : zero;
            for (auto operations : {this->whole_operations(), this->cutting_operations(0)}) {
                for (const auto& operation : operations) {
                    if (operation.square && operand == &A) continue;
                    SCOPED_TRACE(operation.name);
                    WordBench<TypeParam> bench(pars, length);
                    ExactNumber<TypeParam> T({5}, 5, true);
                    operation.run(bench, T.f, operand->f, other.f);
                    EXPECT_TRUE(T.f.L == 0 && T.f.exp == 0 && !T.f.sign && T.f.hash == 0);
                    const bool keeps = std::string(operation.name).find("xf") != std::string::npos;
                    EXPECT_TRUE(!keeps || operation.square || other.f.L == 0 || !bench.Xb.untouched());
                }
            }
        }
    }
    WordBench<TypeParam> bench(pars, 40);
    ExactNumber<TypeParam> T({5}, 5, true);
    Kept fresh, a;
    a.forward(pars, bench.tr, bench.M, A.f, bench.Xa);
    fresh.inverse_fmul(pars, bench.M, T.f, a);
    a.inverse_fmul(pars, bench.M, T.f, fresh);
    fresh.inverse_fsqr(pars, bench.M, T.f, bench.Xb);
    EXPECT_TRUE(T.f.L == 0 && a.X);
}

TYPED_TEST(ExactTransformOf, TheTargetMayBeAnOperand) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    using Kept = typename TestFixture::Form;
    const auto& pars = this->multiplier.pars;
    for (const std::size_t n : {5u, 40u, 900u}) {
        WordBench<TypeParam> bench(pars, 2 * n);
        ExactNumber<TypeParam> A(random_words<TypeParam>(random, n), 3, false, 2, n);
        const mpz_class x = in_units(A.f, 3);
        Kept::mul_rr_xx(pars, bench.tr, bench.M, A.f, bench.Xa, A.f, bench.Xb, A.f);
        expect_value(A, x * x, 6);
    }
}

TYPED_TEST(ExactTransformOf, RefusesTransformsThatAreTooShortOrAnotherOne) {
    using Kept = typename TestFixture::Form;
    const auto& pars = this->multiplier.pars;
    const ExactNumber<TypeParam> A(std::vector<TypeParam>(30, all_ones<TypeParam>), 0, false);
    ExactNumber<TypeParam> T(60);
    const auto failures = [&](std::size_t length, const char* type, const char* text) {
        WordBench<TypeParam> bench(pars, length);
        ASSERT_EQ(bench.words(), length);
        auto operations = this->whole_operations();
        for (auto& operation : this->cutting_operations(55)) operations.push_back(operation);
        for (const auto& operation : operations) {
            const std::string told = failure_of([&] { operation.run(bench, T.f, A.f, A.f); });
            const std::string name = std::string("ExactFloatTransformR::") + operation.name;
            const bool forward_first = length < 30 && told.find("::forward()") != std::string::npos;
            EXPECT_EQ(told, std::string(type) + ": " + (forward_first ? "ExactFloatTransformR::forward()" : name) + " "
                                + text);
            EXPECT_TRUE(T.f.L == 0 && T.guards_are_intact());
            bench.expect_intact();
        }
    };
    failures(59, "ConvolutionTooSmallException", "Convolution length is too small.");
    failures(29, "TransformTooSmallException", "Transform length is too small.");

    WordBench<TypeParam> bench(pars, 2000), shorter(pars, 60);
    Kept a, b;
    const auto expect_refused = [&](const char* text) {
        testing::internal::CaptureStdout();
        EXPECT_EQ(failure_of([&] { a.inverse_fmul(pars, bench.M, T.f, b); }),
                  "InvalidParametersException: ExactFloatTransformR::inverse_fmul() " + std::string(text));
        EXPECT_EQ(failure_of([&] { Kept::mul_rf_xf(pars, bench.tr, bench.M, T.f, bench.Xa, A.f, b); }),
                  "InvalidParametersException: ExactFloatTransformR::mul_rf_xf() " + std::string(text));
        return testing::internal::GetCapturedStdout();
    };
    b.forward(pars, shorter.tr, shorter.M, A.f, shorter.Xb);
    a.forward(pars, bench.tr, bench.M, A.f, bench.Xa);
    const std::string printed = expect_refused("Mismatching Transform Parameters");
    EXPECT_NE(printed.find("BKT: capacity"), std::string::npos);
    EXPECT_NE(printed.find("FFT: capacity"), std::string::npos);
    b.forward(pars, bench.tr, bench.M, A.f, bench.Xb);
    b.inverse_fsqr(pars, bench.M, T.f, bench.Xb);
    expect_refused("The forward form has been consumed.");
    EXPECT_EQ(failure_of([&] { b.inverse_fsqr(pars, bench.M, T.f, bench.Xa); }),
              "InvalidParametersException: ExactFloatTransformR::inverse_fsqr() The forward form has been consumed.");
}

} // namespace
