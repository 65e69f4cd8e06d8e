// Capacities, and that nothing takes memory from the heap.
#include "numbers/big_float_support.h"
#include "support/heap_calls.h"

#include <functional>

namespace {

using namespace test;
using zvp::ParallelContext;

TEST(BigFloatStorage, JustEnoughPassesAndOneLessIsRefused) {
    Multiplier multiplier;
    const auto& pars = multiplier.pars;
    const Number A({1, 2, 3, 4, 5}, 0), B({7, 8, 9}, 1), C({0xFFFF'0000}, 0), full({ones}, 0);
    const struct {
        const char* name;
        std::size_t capacity;
        std::function<void(BigFloat&)> run;
    } cases[] = {
        {"BigFloat::set_BigFloat()", 4, [&](BigFloat& T) { T.set_BigFloat(2, {}, A.f); }},
        {"BigFloat::set_BigFloat()", 5, [&](BigFloat& T) { T.set_BigFloat(9, {}, A.f); }},
        {"BigFloat::set_double()", 2, [&](BigFloat& T) { T.set_double(0x1p52, 0); }},
        {"BigFloat::mul_uW()", 3, [&](BigFloat& T) { T.set_double(1.0, 0); }},
        {"BigFloat::set_uadd()", 6, [&](BigFloat& T) { T.set_add(8, {}, A.f, B.f); }},
        {"BigFloat::set_uadd()", 4, [&](BigFloat& T) { T.set_uadd(2, {}, A.f, B.f); }},
        {"BigFloat::set_usub()", 5, [&](BigFloat& T) { T.set_sub(8, {}, B.f, A.f); }},
        {"BigFloat::set_usub()", 3, [&](BigFloat& T) { T.set_usub(2, {}, A.f, B.f); }},
        {"BigFloat::set_rsub()", 3, [&](BigFloat& T) { T.set_rsub(2, {}, A.f, B.f, 4, true); }},
        {"BigFloat::set_mul()", 2, [&](BigFloat& T) { T.set_mul(3, pars, C.f, C.f); }},
        {"BigFloat::set_mul()", 8, [&](BigFloat& T) { T.set_mul(9, pars, A.f, B.f); }},
        {"BigFloat::set_mul()", 5, [&](BigFloat& T) { T.set_mul(3, pars, A.f, B.f); }},
        {"BigFloat::set_mul_small()", 8, [&](BigFloat& T) { T.set_mul_small(9, pars, A.f, B.f); }},
        {"BigFloat::set_sqr()", 10, [&](BigFloat& T) { T.set_sqr(9, pars, A.f); }},
        {"BigFloat::set_sqr()", 5, [&](BigFloat& T) { T.set_sqr(3, pars, A.f); }},
        {"BigFloat::set_mul_uW()", 4, [&](BigFloat& T) { T.set_mul_uW(2, {}, A.f, ones); }},
        {"BigFloat::set_mul_uW()", 3, [&](BigFloat& T) { T.set_mul_uW(2, {}, A.f, std::int64_t{-5}); }},
        {"BigFloat::set_mul_uW()", 5, [&](BigFloat& T) { T.set_mul_uW(2, {}, A.f, std::int64_t{-1} << 40); }},
        {"BigFloat::set_div_sW()", 9, [&](BigFloat& T) { T.set_div_sW(7, {}, A.f, 7); }},
        {"BigFloat::set_div_sW()", 9, [&](BigFloat& T) { T.set_div_sW(7, {}, A.f, -1); }},
        {"BigFloat::mul_uW()", 2, [&](BigFloat& T) { T.set_BigFloat(0, {}, C.f), T.mul_uW({}, 7); }},
        {"BigFloat::add_ip()", 2, [&](BigFloat& T) { T.set_BigFloat(0, {}, C.f), T.add_ip(7, 1); }},
        {"BigFloat::purturb_up()", 2, [&](BigFloat& T) { T.set_BigFloat(0, {}, full.f), T.purturb_up(0); }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.name << " " << c.capacity);
        Number enough(c.capacity), less(c.capacity - 1);
        EXPECT_EQ(failure_of([&] { c.run(enough.f); }), "nothing");
        EXPECT_EQ(failure_of([&] { c.run(less.f); }),
                  std::string(c.name) + " " + std::to_string(c.capacity - 1) + " " + std::to_string(c.capacity));
        EXPECT_TRUE(enough.guards_are_intact() && less.guards_are_intact());
    }
}

#ifndef ZORVANE_SANITIZED
TEST(BigFloatStorage, NoOperationTakesHeapMemory) {
    std::mt19937_64 random(seed());
    Multiplier multiplier(100);
    InOrder framework;
    for (const std::uint32_t tds : {1u, 3u, 100u}) {
        for (const std::size_t n : {std::size_t{1}, std::size_t{9}, multiplier.reach / 2, std::size_t{100'000}}) {
            auto pars = multiplier.pars;
            pars.tds = tds;
            pars.framework = &framework;
            const ParallelContext& ctx = pars;
            const Number A = random_number(random, n), B = random_number(random, n, 0, 1);
            Number number(2 * n + 8);
            BigFloat& T = number.f;
            std::int64_t e;
            const std::size_t calls = heap_calls_of([&] {
                T.set_BigFloat(n, ctx, A.f);
                T.set_add(n, ctx, A.f, B.f);
                T.set_sub(n, ctx, A.f, B.f);
                T.set_rsub(n, ctx, A.f, B.f, 3, true);
                if (n <= multiplier.reach / 2) {
                    T.set_mul(n, pars, A.f, B.f);
                    T.set_mul(2 * n, pars, A.f, B.f);
                    T.set_mul_small(n, pars, A.f, B.f);
                    T.set_sqr(n, pars, A.f);
                }
                T.set_mul_uW(n, ctx, A.f, zvp::wtype{7});
                T.set_mul_uW(n, ctx, A.f, std::int64_t{-1} << 40);
                T.mul_uW(ctx, 3);
                T.add_ip(4, T.exp);
                T.purturb_up(0);
                T.set_div_sW(n, ctx, A.f, -7);
                T.truncate_at(T.top(), ctx);
                T.strip_ip(ctx);
                T.complement_ip(ctx);
                T.check_normalization();
                T.to_double(e);
                T.set_double(1.0, 0);
            });
            EXPECT_EQ(calls, 0u) << "n " << n << " tds " << tds;
        }
    }
}
#endif

} // namespace
