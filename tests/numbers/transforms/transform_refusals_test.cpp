#include "multiply/algorithms/bkt_transform.h"
#include "multiply/algorithms/fft_transform.h"
#include "transform_support.h"

#include <functional>

namespace {

using namespace test;

/// One call of each operation that makes a window of A * B (of A^2, where it squares) on a transform.
struct Operation {
    const char* name;
    std::function<void(Bench&, const zvp::MultiplyParameters&, BigFloat& T, std::int64_t ie, std::int64_t te,
                       const BigFloat& A)>
        run;
};

/// Operands of 30 words, whatever the transform.
constexpr std::size_t p = 28;

using Parameters = zvp::MultiplyParameters;
using R = BigFloatTransformR;

R form_of(Bench& b, const Parameters& pars, const BigFloat& A, std::byte* X) {
    R form;
    form.forward(pars, b.tr, b.M, A, p, X);
    return form;
}

R out;
const Operation operations[] = {
    {"mul_rr_xx", [](Bench& b, const Parameters& pars, BigFloat& T, std::int64_t ie, std::int64_t te,
                     const BigFloat& A) { R::mul_rr_xx(pars, b.tr, b.M, T, ie, te, b.Xa, A, p, b.Xb, A, p); }},
    {"mul_rr_xf", [](Bench& b, const Parameters& pars, BigFloat& T, std::int64_t ie, std::int64_t te,
                     const BigFloat& A) { R::mul_rr_xf(pars, b.tr, b.M, T, ie, te, b.Xa, A, p, b.Xb, A, p, out); }},
    {"mul_rf_xf",
     [](Bench& b, const Parameters& pars, BigFloat& T, std::int64_t ie, std::int64_t te, const BigFloat& A) {
         R::mul_rf_xf(pars, b.tr, b.M, T, ie, te, b.Xa, A, p, form_of(b, pars, A, b.Xb));
     }},
    {"sqr_rx_xf", [](Bench& b, const Parameters& pars, BigFloat& T, std::int64_t ie, std::int64_t te,
                     const BigFloat& A) { R::sqr_rx_xf(pars, b.tr, b.M, T, ie, te, b.Xa, A, p, b.Xb, out); }},
    {"inverse_fsqr", [](Bench& b, const Parameters& pars, BigFloat& T, std::int64_t ie, std::int64_t te,
                        const BigFloat& A) { form_of(b, pars, A, b.Xb).inverse_fsqr(pars, b.M, T, ie, te, b.Xa); }},
};

/// The operations whose range follows from the precision.
const Operation precise_operations[] = {
    {"sqr_r_x", [](Bench& b, const Parameters& pars, BigFloat& T, std::int64_t, std::int64_t,
                   const BigFloat& A) { R::sqr_r_x(pars, b.tr, b.M, T, p, b.Xa, A); }},
    {"inverse_fmul",
     [](Bench& b, const Parameters& pars, BigFloat& T, std::int64_t, std::int64_t, const BigFloat& A) {
         form_of(b, pars, A, b.Xa).inverse_fmul(pars, b.M, T, p, form_of(b, pars, A, b.Xb));
     }},
};

std::string named(const char* type, const char* operation, const char* text) {
    return std::string(type) + " BigFloatTransformR::" + operation + "(): " + text;
}

class TransformRefusals : public testing::Test {
protected:
    /// T is as it was, and the memory around everything too.
    void expect_unchanged(const Bench& bench, const Number& T) const {
        bench.expect_intact();
        EXPECT_TRUE(T.guards_are_intact());
        EXPECT_TRUE(T.f.L == 1 && T.f.exp == 77 && T.f.sign && T.f.T == T.f.buffer && T.f.T[0] == 42);
    }

    Multiplier multiplier;
    const Number A{Words(30, ones), 0, false};
};

TEST_F(TransformRefusals, OfATargetOneWordTooSmall) {
    // The range 20 .. 50 and its guards; at precision p, p + 2 words.
    const auto try_target = [&](const Operation& operation, std::size_t needed) {
        SCOPED_TRACE(operation.name);
        for (const std::size_t length : {100u, 1000u}) {
            Bench bench(multiplier.pars, length);
            Number T({42}, 77, true, needed - 2);
            const std::string told = failure_of([&] { operation.run(bench, multiplier.pars, T.f, 20, 50, A.f); });
            EXPECT_EQ(told, "BigFloatTransformR::" + std::string(operation.name) + "() " + std::to_string(needed - 1)
                                + " " + std::to_string(needed));
            expect_unchanged(bench, T);
            Number enough({42}, 77, true, needed - 1);
            operation.run(bench, multiplier.pars, enough.f, 20, 50, A.f);
            expect_sound(enough);
            EXPECT_EQ(enough.f.L, needed);
        }
    };
    for (const Operation& operation : operations) try_target(operation, 32);
    for (const Operation& operation : precise_operations) try_target(operation, p + 2);
}

TEST_F(TransformRefusals, OfWordsThatTheFoldDestroys) {
    // The product of 60 words by a transform of 50 leaves 10 .. 50.
    for (const Operation& operation : operations) {
        SCOPED_TRACE(operation.name);
        Bench bench(multiplier.pars, 50);
        ASSERT_EQ(bench.words(), 50u);
        Number T({42}, 77, true, 60);
        const auto refused = [&](std::int64_t ie, std::int64_t te) {
            return refusal([&] { operation.run(bench, multiplier.pars, T.f, ie, te, A.f); });
        };
        EXPECT_EQ(refused(10, 51), "convolution BigFloatTransformR::params(): ie = 8, te = 51");
        EXPECT_EQ(refused(9, 50), named("invalid transform", operation.name, "Invalid Transform Parameters"));
        EXPECT_EQ(refused(0, 5), named("invalid transform", operation.name, "Invalid Transform Parameters"));
        expect_unchanged(bench, T);
        EXPECT_EQ(refused(10, 50), "nothing");
        EXPECT_EQ(refused(-9, 0), "nothing") << "below the product there is nothing to destroy";
    }
    for (const Operation& operation : precise_operations) {
        Bench bench(multiplier.pars, 59);
        Number T({42}, 77, true, 60);
        EXPECT_EQ(refusal([&] { operation.run(bench, multiplier.pars, T.f, 0, 0, A.f); }),
                  "convolution BigFloatTransformR::params(): ie = 30, te = 60");
        expect_unchanged(bench, T);
    }
}

TEST_F(TransformRefusals, OfAnOperandLongerThanTheTransform) {
    const char* text = "Transform length is too small.";
    Bench bench(multiplier.pars, 29);
    Number T({42}, 77, true, 60);
    BigFloatTransformR form;
    EXPECT_EQ(refusal([&] { form.forward(multiplier.pars, bench.tr, bench.M, A.f, p, bench.Xa); }),
              named("transform", "forward", text));
    EXPECT_EQ(refusal([&] { form.forward(multiplier.pars, bench.tr, bench.M, A.f, p - 1, bench.Xa); }), "nothing");
    EXPECT_EQ(form.exp, 1);
    for (const Operation* operation : {&operations[0], &operations[1], &operations[3], &precise_operations[0]})
        EXPECT_EQ(refusal([&] { operation->run(bench, multiplier.pars, T.f, 0, 60, A.f); }),
                  named("transform", operation->name, text));
    EXPECT_EQ(refusal([&] {
                  BigFloatTransformR::mul_rf_xf(multiplier.pars, bench.tr, bench.M, T.f, 0, 60, bench.Xb, A.f, p, form);
              }),
              named("transform", "mul_rf_xf", text));
    expect_unchanged(bench, T);
}

TEST_F(TransformRefusals, OfFormsOfDifferentTransformsWhichArePrinted) {
    const zvp::BKTTransform short_one(100), long_one(101), equal(100);
    const zvp::FFTTransform fft(3200), longer_fft(32000);
    Bench areas(multiplier.pars, 1000); // large enough for all of them
    const auto combine = [&](const Transform& a, const Transform& b) {
        Number T({42}, 77, true, 60);
        R x, y;
        y.forward(multiplier.pars, b, areas.M, A.f, p, areas.Xb);
        x.forward(multiplier.pars, a, areas.M, A.f, p, areas.Xa);
        testing::internal::CaptureStdout();
        const std::string told = refusal([&] { x.inverse_fmul(multiplier.pars, areas.M, T.f, p, y); });
        const std::string printed = testing::internal::GetCapturedStdout();
        const auto raw = [&] { R::mul_rf_xf(multiplier.pars, a, areas.M, T.f, 0, 60, areas.Xa, A.f, p, y); };
        const bool refused = told != "nothing";
        EXPECT_EQ(refusal(raw), refused ? named("parameters", "mul_rf_xf", "Mismatching Transform Parameters") : told);
        if (refused) expect_unchanged(areas, T);
        return told + "\n" + printed;
    };
    const std::string told = named("parameters", "inverse_fmul", "Mismatching Transform Parameters");
    EXPECT_EQ(combine(short_one, long_one), told
                                                + "\nBKT: capacity 3,200 bits, forward form 448 bytes\n"
                                                  "BKT: capacity 3,232 bits, forward form 448 bytes\n");
    EXPECT_EQ(combine(short_one, fft).find(told), 0u);
    EXPECT_EQ(combine(fft, longer_fft).find(told), 0u);
    EXPECT_EQ(combine(short_one, equal), "nothing\n");
}

TEST_F(TransformRefusals, OfAConsumedForm) {
    Bench bench(multiplier.pars, 100);
    Number T(p + 2);
    BigFloatTransformR a, b;
    a.forward(multiplier.pars, bench.tr, bench.M, A.f, p, bench.Xa);
    b.forward(multiplier.pars, bench.tr, bench.M, A.f, p, bench.Xb);
    a.inverse_fmul(multiplier.pars, bench.M, T.f, p, b);
    const char* text = "The forward form has been consumed.";
    const auto& pars = multiplier.pars;
    EXPECT_EQ(refusal([&] { a.inverse_fmul(pars, bench.M, T.f, p, b); }), named("parameters", "inverse_fmul", text));
    EXPECT_EQ(refusal([&] { b.inverse_fmul(pars, bench.M, T.f, p, a); }), named("parameters", "inverse_fmul", text));
    EXPECT_EQ(refusal([&] { a.inverse_fsqr(pars, bench.M, T.f, 0, 9, bench.Xa); }),
              named("parameters", "inverse_fsqr", text));
    EXPECT_EQ(refusal([&] { BigFloatTransformR::mul_rf_xf(pars, bench.tr, bench.M, T.f, 0, 9, bench.Xa, A.f, p, a); }),
              named("parameters", "mul_rf_xf", text));
}

} // namespace
