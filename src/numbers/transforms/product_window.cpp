#include "numbers/transforms/product_window.h"

#include "app/console/number_forms.h"
#include "app/failure/exceptions.h"

#include <algorithm>

namespace zvp {

ProductWindow ProductWindow::params(const Transform& tr, std::int64_t ie, std::int64_t te, std::int64_t base,
                                    std::size_t P, unsigned bits) {
    const std::uint64_t C = tr.capacity_bits / bits;
    const auto folded = static_cast<std::int64_t>(P - std::min<std::uint64_t>(P, C));
    const std::int64_t lo = base + folded;
    const std::int64_t hi = base + static_cast<std::int64_t>(P) - folded;
    if (hi < te && folded > 0)
        throw ConvolutionTooSmallException("BigFloatTransformR::params()",
                                           "ie = " + format_signed(ie) + ", te = " + format_signed(te), C, P);

    ProductWindow window;
    window.exp = std::max(lo, ie);
    const std::int64_t end = std::min(hi, te);
    if (window.exp >= end) return {};
    window.s = static_cast<std::size_t>(window.exp - base);
    window.e = static_cast<std::size_t>(end - base);
    return window;
}

} // namespace zvp
