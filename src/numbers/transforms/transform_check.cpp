#include "numbers/transforms/transform_check.h"

#include "app/console/console.h"
#include "app/console/number_forms.h"
#include "app/failure/exceptions.h"

namespace zvp {
namespace {

void print_transform(const Transform& tr) {
    print_line(std::string(tr.name()) + ": capacity " + format_number(tr.capacity_bits, NumberForm::commas)
               + " bits, forward form " + format_number(tr.transform_bytes, NumberForm::commas) + " bytes");
}

} // namespace

void check_operand(const char* function, const Transform& tr, std::uint64_t bits) {
    if (bits > tr.capacity_bits) throw TransformTooSmallException(function, "Transform length is too small.");
}

void check_match(const char* function, const Transform& a, const Transform& b) {
    if (&a == &b || a.compatible(b)) return;
    print_transform(a);
    print_transform(b);
    throw InvalidParametersException(function, "Mismatching Transform Parameters");
}

void check_form(const char* function, const std::byte* X) {
    if (!X) throw InvalidParametersException(function, "The forward form has been consumed.");
}

} // namespace zvp
