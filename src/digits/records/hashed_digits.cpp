#include "digits/records/hashed_digits.h"

#include "app/console/number_forms.h"
#include "app/failure/exceptions.h"
#include "digits/digest/sha2.h"
#include "digits/records/digit_text.h"

namespace zvp {

HashedDigits::HashedDigits(DigitViewer2::BasicDigitReader& reader, std::uint64_t start_, std::uint64_t length_)
    : start(start_), end(start_ + length_), length(length_) {
    if (reader.radix != 10 && reader.radix != 16) throw InvalidParametersException("HashedDigits()", "Invalid Radix.");
    sha256 = sha256_text(read_digit_text(reader, start, length));
}

std::string HashedDigits::report_text() const {
    return "SHA256-dec(" + format_number(start + 1, NumberForm::commas) + " - " + format_number(end, NumberForm::commas)
           + "): " + sha256;
}

} // namespace zvp
