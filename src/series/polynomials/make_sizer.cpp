#include "app/failure/exceptions.h"
#include "series/polynomials/term_sizer.h"

namespace Polynomials {

std::unique_ptr<PolynomialTermSizer> make_sizer(const std::string& name, const IntegerPolynomial& polynomial,
                                                const DoubleDouble& extra) {
    const RootMap zeros = isolate_zeros(polynomial);
    // A factor of 0 would make every later term infinite.
    for (const auto& [box, multiplicity] : zeros)
        if (box.real_low == box.real_high && box.imag_high.is_zero() && box.real_high.sign() > 0)
            throw zvp::InvalidParametersException(
                "make_sizer()", "Polynomial " + name + " is zero at x = " + box.real_high.to_string() + ".");
    return std::make_unique<PolynomialTermSizer>(log(polynomial.top().abs().to_double_double()) + extra, zeros);
}

} // namespace Polynomials
