// Every algorithm against MPFR, in exactly the memory that its plan tells.

#include "constants/constants_support.h"
#include "constants/e/e_sum.h"
#include "constants/pi/pi_plan.h"
#include "constants/roots/root_plans.h"

#include <cstdlib>
#include <map>
#include <string>
#include <tuple>
#include <vector>

namespace test {
namespace {

using zvp::ConstantPlanB;
using zvp::PiPlanB;
using zvp::PiSeries;
using zvp::wtype;

using MakePlan = std::function<std::unique_ptr<ConstantPlanB>(MultiplyTables&, std::size_t, std::uint32_t)>;

struct Algorithm {
    const char* name;
    std::string short_name, long_name, label;
    MakePlan plan;
    std::function<void(mpfr_t)> value;
};

template <class Plan, class... Arguments>
MakePlan maker(Arguments... before) {
    return [=](MultiplyTables& tables, std::size_t w, std::uint32_t tds) {
        return std::make_unique<Plan>(tables, before..., w, tds);
    };
}

void pi(mpfr_t x) { mpfr_const_pi(x, MPFR_RNDN); }
void e(mpfr_t x) {
    mpfr_set_ui(x, 1, MPFR_RNDN);
    mpfr_exp(x, x, MPFR_RNDN);
}
void golden_ratio(mpfr_t x) {
    mpfr_sqrt_ui(x, 5, MPFR_RNDN);
    mpfr_add_ui(x, x, 1, MPFR_RNDN);
    mpfr_div_2ui(x, x, 1, MPFR_RNDN);
}

std::vector<Algorithm> algorithms() {
    std::vector<Algorithm> all = {
        {"pi0", "Chudnovsky", "Chudnovsky (1988)", "Pi", maker<PiPlanB>(PiSeries::chudnovsky, false), pi},
        {"pi1", "Ramanujan", "Ramanujan (1910)", "Pi", maker<PiPlanB>(PiSeries::ramanujan, false), pi},
        {"pi2", "Chudnovsky (reduced)", "Chudnovsky (1988) (reduced memory)", "Pi",
         maker<PiPlanB>(PiSeries::chudnovsky, true), pi},
        {"pi3", "Ramanujan (reduced)", "Ramanujan (1910) (reduced memory)", "Pi",
         maker<PiPlanB>(PiSeries::ramanujan, true), pi},
        {"e0", "exp(1)", "Taylor Series of exp(1)", "e", maker<zvp::EPlanB>(false), e},
        {"e1", "exp(-1)", "Taylor Series of exp(-1)", "e", maker<zvp::EPlanB>(true), e},
        {"goldenratio", "Newton", "Newton's Method", "Golden Ratio", maker<zvp::GoldenRatioPlanB>(), golden_ratio},
    };
    for (const wtype n : {wtype{2}, wtype{3}, wtype{200}, wtype{99'999'989}, ~wtype{0}})
        all.push_back({"sqrt", "Newton", "Newton's Method", "Sqrt(" + std::to_string(n) + ")", maker<zvp::SqrtPlanB>(n),
                       [n](mpfr_t x) { mpfr_sqrt_ui(x, n, MPFR_RNDN); }});
    return all;
}

/// The value to the longest precision that was asked for.
const Real& reference(const Algorithm& algorithm, std::size_t p) {
    static std::map<std::string, std::pair<std::size_t, std::unique_ptr<Real>>> known;
    auto& [words, value] = known[algorithm.label];
    if (words < p) {
        value = std::make_unique<Real>(bits_for(p));
        algorithm.value(value->x);
        words = p;
    }
    return *value;
}

constexpr double most_error = 40; // units of W^-p: the largest bound that a computation states

void expect_value(const Algorithm& algorithm, std::size_t p, std::uint32_t tds) {
    SCOPED_TRACE(std::string(algorithm.name) + " " + algorithm.label + ", " + std::to_string(p) + " words, "
                 + std::to_string(tds) + " tasks");
    Machinery machinery(tds);
    const auto plan = algorithm.plan(machinery.tables, p, tds);
    machinery.place();
    EXPECT_EQ(plan->w, p);
    EXPECT_EQ(plan->tds, tds);
    EXPECT_EQ(plan->short_algorithm_name(), algorithm.short_name);
    EXPECT_EQ(plan->long_algorithm_name(), algorithm.long_name);
    EXPECT_EQ(plan->result_words() % 16, 0u);
    EXPECT_EQ(plan->memory_bytes() % 64, 0u);
    ASSERT_EQ(plan->memory_budget.size(), 1u);
    EXPECT_EQ(plan->memory_budget[0].first, algorithm.label);
    EXPECT_EQ(plan->memory_budget[0].second, plan->memory_bytes() + plan->result_words() * sizeof(wtype));
    ExactStorage storage(plan->result_words(), plan->memory_bytes());
    EXPECT_FALSE(plan->run(machinery.pars, {}, storage.result.f, storage.buffer()));
    storage.expect_intact();
    EXPECT_LT(error_in_words(storage.result.f, reference(algorithm, p), p), most_error);
}

void expect_too_small(const Algorithm& algorithm, std::size_t p, std::uint32_t tds) {
    Machinery machinery(tds);
    const auto plan = algorithm.plan(machinery.tables, p, tds);
    machinery.place();
    for (const std::size_t less_result : {0, 1}) {
        ExactStorage storage(plan->result_words(), plan->memory_bytes(), less_result, 1 - less_result);
        EXPECT_THROW(plan->run(machinery.pars, {}, storage.result.f, storage.buffer()), zvp::BufferTooSmallException)
            << algorithm.name << " " << p;
        EXPECT_TRUE(storage.memory.guards_are_intact());
    }
}

TEST(Constants, AreThoseOfMpfrToTheLastWordInExactlyThePlannedMemory) {
    const std::size_t million = words_of_digits(1'000'000);
    for (const Algorithm& algorithm : algorithms()) {
        reference(algorithm, words_of_digits(31'415));
        for (const std::size_t p : {std::size_t{1}, std::size_t{2}, std::size_t{5}, std::size_t{9}, std::size_t{10},
                                    std::size_t{11}, std::size_t{12}, std::size_t{13}, std::size_t{27},
                                    std::size_t{105}, std::size_t{333}, std::size_t{1'039}, words_of_digits(31'415)})
            for (const std::uint32_t tds : {1, 2, 3, 8}) expect_value(algorithm, p, tds);
        for (const std::size_t p : {std::size_t{13}, std::size_t{1'039}}) expect_too_small(algorithm, p, 2);
        if (algorithm.label == "Sqrt(3)") break; // the other words only at small sizes
    }
    for (const Algorithm& algorithm : algorithms()) {
        if (algorithm.label == "Sqrt(3)") break;
        for (const std::uint32_t tds : {1, 2, 3, 8}) expect_value(algorithm, million - tds, tds);
    }
}

TEST(Constants, SquareRootsOfTheLargestWords) {
    for (const Algorithm& algorithm : algorithms())
        if (algorithm.name == std::string("sqrt"))
            for (const std::size_t p : {1, 9, 10, 47, 4'001}) expect_value(algorithm, p, 2);
}

TEST(Constants, LargeOnes) {
    if (!std::getenv("ZORVANE_TEST_LARGE")) GTEST_SKIP() << "ZORVANE_TEST_LARGE isn't set";
    for (const Algorithm& algorithm : algorithms()) {
        if (algorithm.label == "Sqrt(3)") break;
        for (const std::uint32_t tds : {1, 2}) expect_value(algorithm, words_of_digits(10'000'000), tds);
    }
}

} // namespace
} // namespace test
