#pragma once

#include "constants/catalog/constant.h"

namespace zvp {

/// What never changes of the constant with that id, which exists.
const ConstantTraits& constant_traits(std::int32_t id);

} // namespace zvp
