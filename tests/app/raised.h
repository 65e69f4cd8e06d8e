#pragma once

#include "app/failure/exceptions.h"

#include <string>

namespace test {

/// What `function` raises, as "<type>: <message>"; "nothing" if it returns.
template <class Function>
std::string raised_by(Function&& function) {
    try {
        function();
    } catch (const zvp::StringException& exception) {
        return std::string(exception.get_typename()) + ": " + exception.message;
    } catch (const std::exception& exception) {
        return exception.what();
    }
    return "nothing";
}

} // namespace test
