#include "session/constant_settings.h"

#include "app/failure/exceptions.h"

namespace zvp {

namespace {

Object saved_size(const ComputationSize& size) {
    Object object;
    object.add_integer("DecimalDigits", static_cast<std::int64_t>(size.decimal_digits));
    object.add_boolean("EnableHexDigits", size.hexadecimal_digits != 0);
    // Only a number that doesn't follow from the others is worth a key.
    if (size.hexadecimal_digits != 0 && size.hexadecimal_digits != size.hexadecimal_equivalent)
        object.add_integer("HexadecimalDigits", static_cast<std::int64_t>(size.hexadecimal_digits));
    return object;
}

/// A number of digits; a negative one is below every limit.
std::uint64_t digit_count(std::int64_t number) { return number < 0 ? 1 : static_cast<std::uint64_t>(number); }

ComputationSize loaded_size(const Object& object, std::uint64_t maximum) {
    ComputationSize size;
    size.set_decimal_digits(digit_count(object.get_integer("DecimalDigits")), maximum);
    size.enable_hexadecimal_digits(object.get_boolean("EnableHexDigits"));
    if (size.hexadecimal_digits != 0 && object.find("HexadecimalDigits"))
        size.set_hexadecimal_digits(digit_count(object.get_integer("HexadecimalDigits")), maximum);
    return size;
}

} // namespace

void ConstantSettings::set_constant(std::unique_ptr<Constant> new_constant) {
    constant = std::move(new_constant);
    size.normalize(constant->max_digits());
}

void ConstantSettings::save(Object& object) const {
    object.add_object("Constant", constant->to_config_object());
    object.add_object("ComputeSize", saved_size(size));
    object.add_object("Output", output.to_config_object());
    object.add_boolean("OutputVerify", verify_output);
}

void ConstantSettings::load(const Object& object) {
    ConstantSettings loaded;
    loaded.constant = load_constant(object.get_object("Constant"));
    loaded.size = loaded_size(object.get_object("ComputeSize"), loaded.constant->max_digits());
    loaded.output = OutputSettings(object.get_object("Output"));
    loaded.verify_output = object.get_boolean("OutputVerify");
    *this = std::move(loaded);
}

} // namespace zvp
