#pragma once

#include "app/failure/byte_cursor.h"
#include "app/failure/exception.h"
#include "app/failure/registry.h"

#include <memory>
#include <string_view>

namespace zvp {

/// Rebuilds an exception from its bytes and advances the cursor behind them.
using ExceptionFactory = std::unique_ptr<Exception> (*)(ByteCursor&);

/// Every exception of the family that can be sent, by its registered name.
const Registry<ExceptionFactory>& exception_registry();

/// The exception of that type, or null when the name isn't registered.
std::unique_ptr<Exception> rebuild_exception(std::string_view type_name, ByteCursor& bytes);

} // namespace zvp
