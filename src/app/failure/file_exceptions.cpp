#include "app/failure/file_exceptions.h"

#include "app/console/console.h"

namespace zvp {

PathException::PathException(std::string function_, std::string message_, std::string path_, std::int32_t error_code_)
    : function(std::move(function_)), message(std::move(message_)), path(std::move(path_)), error_code(error_code_) {}

PathException::PathException(ByteCursor& bytes)
    : function(bytes.take_string()),
      message(bytes.take_string()),
      path(bytes.take_string()),
      error_code(static_cast<std::int32_t>(bytes.take_u32())) {}

void PathException::serialize(std::string& bytes) const {
    append_string(bytes, function);
    append_string(bytes, message);
    append_string(bytes, path);
    append_u32(bytes, static_cast<std::uint32_t>(error_code));
}

void PathException::print_body() const {
    if (!function.empty()) print_labelm_line(20, "In Function:", function);
    if (error_code != 0) print_labelm_line(20, "Error Code: ", std::to_string(error_code));
    print_labelm_line(8, "Path: ", path);
    print_line();
    print_line(message);
}

std::string with_system_error(std::string_view message, std::int32_t error_code, platform::FaultDirection direction) {
    return std::string(message) + "\n\n" + std::string(platform::system_error_text(error_code, direction));
}

} // namespace zvp
