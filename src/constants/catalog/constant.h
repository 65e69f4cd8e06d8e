#pragma once
// A constant as the user chooses it: which one, by which algorithm, with which argument. From it a session obtains the
// plan that computes it.

#include "app/notation/node.h"
#include "constants/plan/constant_plan.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zvp {

/// One way to compute a constant.
struct ConstantAlgorithm {
    std::string_view key; // in configurations and on the command line
    std::string_view long_name;
    std::string_view short_name; // in names of files
    std::string_view menu_line;  // name and a note on its speed
};

/// What never changes of a constant.
struct ConstantTraits {
    std::int32_t id; // row of the catalog
    std::string_view key;
    char color; // in which its name is shown
    std::string_view short_name;
    std::string_view long_name;
    std::string_view spot_check_key; // of its digit file
    std::string_view menu_name;
    std::span<const ConstantAlgorithm> algorithms;
    std::span<const std::string_view> menu_notes; // below each line of the menu
    std::string_view menu_text;                   // below all lines
    bool built;                                   // whether this version computes it
};

/// A value object. Bad input of any kind raises InvalidParametersException and changes nothing.
class Constant {
public:
    explicit Constant(const ConstantTraits& traits_) : traits(traits_) {}
    virtual ~Constant() = default;

    virtual std::unique_ptr<Constant> clone() const = 0;

    std::int32_t id() const { return traits.id; }
    std::string_view key() const { return traits.key; }
    std::string_view algorithm_key() const { return current().key; }
    std::string_view menu_name() const { return traits.menu_name; }

    /// Asks for what the constant needs beyond its name. False: the user's choice is dropped.
    virtual bool prompt_parameters() { return true; }

    /// Takes the argument that follows the constant's name and ":" on the command line; it may be empty.
    virtual void set_parameters(std::string_view) {}

    /// Whether there is no argument to go by where none is given.
    virtual bool needs_parameters() const { return false; }

    /// The working size in decimal digits.
    virtual void set_digits(std::uint64_t working_digits) { digits = working_digits; }

    virtual std::uint64_t max_digits() const;
    char color() const { return traits.color; }
    virtual std::string short_name() const { return std::string(traits.short_name); }
    virtual std::string long_name() const { return std::string(traits.long_name); }
    virtual std::string algorithm_name() const { return std::string(current().long_name); }
    std::string_view short_algorithm_name() const { return current().short_name; }

    /// Another key raises "Invalid Algorithm: " and the key.
    void set_algorithm(std::string_view algorithm_key);

    std::vector<std::string> algorithm_keys() const;

    /// Lets the user choose an algorithm.
    void algorithm_menu();

    /// The name of the file of digits to check the result with, without its extension.
    virtual std::string spot_check_key() const { return std::string(traits.spot_check_key); }

    /// Whether this version can compute the constant; where it can't, no plan can be made.
    bool is_built() const { return traits.built; }

    /// What a constant that isn't built is called for print_unbuilt().
    std::string computing_text() const { return "Computing " + long_name(); }

    /// A plan for the working size; null for an algorithm or a constant that isn't there. Raises the wish of `tables`.
    /// Throws LimitExceededException for a size beyond every multiplication.
    virtual std::unique_ptr<ConstantPlanB> make_plan(MultiplyTables& tables, std::uint32_t tasks) const;

    /// The keys of a configuration's object "Constant".
    Object to_config_object() const;

    /// Reads what to_config_object() gives, but for the key "Constant". Raises KeyNotFoundException as well.
    void load(const Object& object);

    std::uint64_t digits = 100;
    std::int32_t algorithm = 0; // index in the list of the constant's algorithms

protected:
    Constant(const Constant&) = default;

    const ConstantAlgorithm& current() const { return traits.algorithms[static_cast<std::size_t>(algorithm)]; }
    std::uint64_t working_words() const;

    /// The keys between "Constant" and "Algorithm".
    virtual void save_parameters(Object&) const {}
    virtual void load_parameters(const Object&) {}

    const ConstantTraits& traits;
};

} // namespace zvp
