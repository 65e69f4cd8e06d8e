#include "multiply/algorithms/bkt_transform.h"
#include "numbers/transforms/product_window.h"
#include "transform_support.h"

namespace {

using namespace test;
using zvp::ProductWindow;

TEST(ProductWindow, GivesThePartOfTheRangeThatTheFoldLeaves) {
    struct Case {
        const char* what;
        std::int64_t ie, te, base;
        std::size_t P;
        std::int64_t exp;
        std::size_t s, e;
    };
    constexpr std::int64_t far = std::int64_t{1} << 61;
    const Case cases[] = {
        {"the whole product", -9, 99, 3, 20, 3, 0, 20},
        {"a product as long as the transform", -9, 999, 0, 100, 0, 0, 100},
        {"cut low", 10, 99, 3, 20, 10, 7, 20},
        {"cut high", -9, 10, 3, 20, 3, 0, 7},
        {"one word", 10, 11, 3, 20, 10, 7, 8},
        {"wrapped, the middle", 60, 90, 0, 140, 60, 60, 90},
        {"wrapped, all that is left", 40, 100, 0, 140, 40, 40, 100},
        {"wrapped, from below what is left", 0, 100, 0, 140, 40, 40, 100},
        {"wrapped by one word", 0, 100, 0, 101, 1, 1, 100},
        {"wrapped, one word left", 0, 100, 0, 199, 99, 99, 100},
        {"far up", far - 5, far, far - 10, 20, far - 5, 5, 10},
        {"far down", -far, -far + 5, -far - 1, 20, -far, 1, 6},
        {"below the product", -9, 3, 3, 20, 0, 0, 0},
        {"above the product", 23, 99, 3, 20, 0, 0, 0},
        {"wrapped, below what is left", 0, 40, 0, 140, 0, 0, 0},
        {"wrapped, nothing left", 0, 100, 0, 200, 0, 0, 0},
        {"an empty range", 10, 10, 3, 20, 0, 0, 0},
        {"an inverted range", 12, 10, 3, 20, 0, 0, 0},
    };
    const zvp::BKTTransform tr(100);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const ProductWindow window = ProductWindow::params(tr, c.ie, c.te, c.base, c.P);
        EXPECT_EQ(window.exp, c.exp);
        EXPECT_EQ(window.s, c.s);
        EXPECT_EQ(window.e, c.e);
    }
}

TEST(ProductWindow, RefusesWhatTheFoldDestroysAtTheTop) {
    const zvp::BKTTransform tr(100);
    const auto plan = [&](std::int64_t te, std::size_t P, unsigned bits) {
        return refusal([&] { ProductWindow::params(tr, -7, te, 0, P, bits); });
    };
    EXPECT_EQ(plan(101, 101, 32), "convolution BigFloatTransformR::params(): ie = -7, te = 101");
    EXPECT_EQ(plan(101, 100, 32), "nothing");
    EXPECT_EQ(plan(51, 51, 64), "convolution BigFloatTransformR::params(): ie = -7, te = 51");
    EXPECT_EQ(plan(50, 50, 64), "nothing");
}

} // namespace
