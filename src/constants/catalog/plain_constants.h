#pragma once
// Constants without an argument.

#include "constants/catalog/constant.h"
#include "constants/catalog/constant_rows.h"

#include <memory>

namespace zvp {

/// One that this version can't compute yet.
class PlainConstant final : public Constant {
public:
    explicit PlainConstant(std::int32_t id) : Constant(constant_traits(id)) {}
    std::unique_ptr<Constant> clone() const override { return std::make_unique<PlainConstant>(*this); }
};

class GoldenRatioConstant final : public Constant {
public:
    GoldenRatioConstant() : Constant(constant_traits(1)) {}
    std::unique_ptr<Constant> clone() const override { return std::make_unique<GoldenRatioConstant>(*this); }
    std::unique_ptr<ConstantPlanB> make_plan(MultiplyTables& tables, std::uint32_t tasks) const override;
};

class EConstant final : public Constant {
public:
    EConstant() : Constant(constant_traits(2)) {}
    std::unique_ptr<Constant> clone() const override { return std::make_unique<EConstant>(*this); }
    std::unique_ptr<ConstantPlanB> make_plan(MultiplyTables& tables, std::uint32_t tasks) const override;
};

class PiConstant final : public Constant {
public:
    PiConstant() : Constant(constant_traits(3)) {}
    std::unique_ptr<Constant> clone() const override { return std::make_unique<PiConstant>(*this); }
    std::unique_ptr<ConstantPlanB> make_plan(MultiplyTables& tables, std::uint32_t tasks) const override;
};

} // namespace zvp
