#include "series/double_double/stirling.h"

#include <cmath>

namespace zvp {

double stirling(double x) {
    if (x == 0) return -1;
    return (x + 0.5) * std::log(std::fabs(x)) - x - 0.08106146679532726;
}

DoubleDouble stirling(const DoubleDouble& x) {
    static const DoubleDouble constant = DoubleDouble::parse("0.08106146679532725821967026359438236013860");
    if (x.hi == 0) return -1;
    return (x + DoubleDouble(0.5)) * log(abs(x)) - x - constant;
}

} // namespace zvp
