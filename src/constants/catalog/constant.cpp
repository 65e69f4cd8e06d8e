#include "constants/catalog/constant.h"

#include "app/failure/exceptions.h"
#include "constants/catalog/computation_size.h"

namespace zvp {

std::uint64_t Constant::max_digits() const { return max_decimal_digits; }

std::uint64_t Constant::working_words() const { return words_of_hexadecimal(hexadecimal_equivalent_of(digits)); }

void Constant::set_algorithm(std::string_view algorithm_key) {
    for (std::size_t i = 0; i < traits.algorithms.size(); ++i) {
        if (traits.algorithms[i].key == algorithm_key) {
            algorithm = static_cast<std::int32_t>(i);
            return;
        }
    }
    throw InvalidParametersException("", "Invalid Algorithm: " + std::string(algorithm_key));
}

std::vector<std::string> Constant::algorithm_keys() const {
    std::vector<std::string> keys;
    for (const ConstantAlgorithm& choice : traits.algorithms) keys.emplace_back(choice.key);
    return keys;
}

std::unique_ptr<ConstantPlanB> Constant::make_plan(MultiplyTables&, std::uint32_t) const { return nullptr; }

Object Constant::to_config_object() const {
    Object object;
    object.add_string("Constant", std::string(key()));
    save_parameters(object);
    object.add_string("Algorithm", std::string(algorithm_key()));
    return object;
}

void Constant::load(const Object& object) {
    load_parameters(object);
    set_algorithm(object.get_string("Algorithm"));
}

} // namespace zvp
