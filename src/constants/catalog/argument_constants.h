#pragma once
// Constants with an argument.

#include "constants/catalog/constant.h"

#include <memory>
#include <string>
#include <string_view>

namespace zvp {

/// A constant with a whole number as its argument, which configurations hold as "Argument".
class ArgumentConstant : public Constant {
public:
    void set_parameters(std::string_view text) override;

    /// Raises InvalidParametersException for a number that the constant doesn't take.
    virtual void set_argument(std::int64_t n) = 0;

protected:
    ArgumentConstant(const ConstantTraits& traits_, std::uint32_t argument_) : Constant(traits_), argument(argument_) {}

    void save_parameters(Object& object) const override;
    void load_parameters(const Object& object) override;

    /// Asks for the argument under `heading` until it is one.
    bool prompt_argument(std::string_view heading, std::string_view label);

    std::uint32_t argument;
};

/// sqrt(n) for n that is no square.
class SqrtConstant final : public ArgumentConstant {
public:
    SqrtConstant();
    std::unique_ptr<Constant> clone() const override { return std::make_unique<SqrtConstant>(*this); }
    bool prompt_parameters() override;
    void set_argument(std::int64_t n) override;
    std::string short_name() const override { return "Sqrt(" + std::to_string(argument) + ")"; }
    std::string long_name() const override { return short_name(); }
    std::string spot_check_key() const override { return "Sqrt-" + std::to_string(argument); }
    std::unique_ptr<ConstantPlanB> make_plan(MultiplyTables& tables, std::uint32_t tasks) const override;
};

/// The natural logarithm of n.
class LogConstant final : public ArgumentConstant {
public:
    LogConstant();
    std::unique_ptr<Constant> clone() const override { return std::make_unique<LogConstant>(*this); }
    bool prompt_parameters() override { return prompt_argument("Log(n)", "n = "); }
    void set_argument(std::int64_t n) override;
    std::string short_name() const override { return "Log(" + std::to_string(argument) + ")"; }
    std::string long_name() const override { return short_name(); }
    std::string spot_check_key() const override { return "Log-" + std::to_string(argument); }
};

/// Euler's constant by a parameter n = 2^k that follows from the size.
class GammaConstant final : public Constant {
public:
    GammaConstant();
    std::unique_ptr<Constant> clone() const override { return std::make_unique<GammaConstant>(*this); }
    void set_digits(std::uint64_t working_digits) override;
    std::string algorithm_name() const override;

private:
    std::uint32_t k = 0;
};

/// Euler's constant by a parameter n = 2^k that the user gives.
class BrentConstant final : public ArgumentConstant {
public:
    BrentConstant();
    std::unique_ptr<Constant> clone() const override { return std::make_unique<BrentConstant>(*this); }
    bool prompt_parameters() override { return prompt_argument("n = 2^k", "k = "); }
    bool needs_parameters() const override { return true; }
    void set_argument(std::int64_t n) override;
    std::string algorithm_name() const override;
};

/// A formula of the user's, from a file.
class CustomConstant final : public Constant {
public:
    CustomConstant();
    std::unique_ptr<Constant> clone() const override { return std::make_unique<CustomConstant>(*this); }
    void set_parameters(std::string_view path) override;
    bool needs_parameters() const override { return true; }

private:
    std::string file;
};

} // namespace zvp
