#include "app/failure/exceptions.h"

#include "app/console/console.h"
#include "app/console/number_forms.h"

namespace zvp {

namespace {

void print_field(std::string_view label, std::string_view value) { print_labelm_line(20, label, value); }

void print_field(std::string_view label, std::uint64_t value) { print_field(label, std::to_string(value)); }

} // namespace

void Exception::print() const {
    set_color('R');
    print_line();
    print_labelc(heading(), get_typename());
    print_line("\n");
    print_body();
    zvp::print("\n\n");
    set_color('w');
}

StringException::StringException(std::string function_, std::string message_)
    : function(std::move(function_)), message(std::move(message_)) {}

StringException::StringException(ByteCursor& bytes) : function(bytes.take_string()), message(bytes.take_string()) {}

void StringException::serialize(std::string& bytes) const {
    append_string(bytes, function);
    append_string(bytes, message);
}

void StringException::print_function() const {
    if (function.empty()) return;
    print_labelc("In Function", function);
    print_line("\n");
}

void StringException::print_body() const {
    print_function();
    print_line(message);
}

LimitExceededException::LimitExceededException(std::string function_, std::string message_, std::uint64_t limit_,
                                               std::uint64_t attempted_)
    : ExceptionOf(std::move(function_), std::move(message_)), limit(limit_), attempted(attempted_) {}

LimitExceededException::LimitExceededException(ByteCursor& bytes)
    : ExceptionOf(bytes), limit(bytes.take_u64()), attempted(bytes.take_u64()) {}

void LimitExceededException::serialize(std::string& bytes) const {
    StringException::serialize(bytes);
    append_u64(bytes, limit);
    append_u64(bytes, attempted);
}

void LimitExceededException::print_body() const {
    if (!function.empty()) {
        print_line("Limit Exceeded:");
        print_line("    Function: " + function);
    }
    print_line(message);
    print_line("    Limit: " + (limit == unknown_limit ? "Unknown" : std::to_string(limit)));
    print_line("    Attempted: " + std::to_string(attempted));
}

ConvolutionTooSmallException::ConvolutionTooSmallException(std::string function_, std::string message_,
                                                           std::uint64_t convolution_size_,
                                                           std::uint64_t requested_size_)
    : ExceptionOf(std::move(function_), std::move(message_)),
      convolution_size(convolution_size_),
      requested_size(requested_size_) {}

ConvolutionTooSmallException::ConvolutionTooSmallException(ByteCursor& bytes)
    : ExceptionOf(bytes), convolution_size(bytes.take_u64()), requested_size(bytes.take_u64()) {}

void ConvolutionTooSmallException::serialize(std::string& bytes) const {
    StringException::serialize(bytes);
    append_u64(bytes, convolution_size);
    append_u64(bytes, requested_size);
}

void ConvolutionTooSmallException::print_body() const {
    print_function();
    print_line("Limit Exceeded:");
    print_line("    Message: " + message);
    print_line("    Convolution Size: " + std::to_string(convolution_size));
    print_line("    Requested Size: " + std::to_string(requested_size));
}

ExponentOverflowException::ExponentOverflowException(std::string function_, std::int64_t value_, std::int64_t limit_)
    : ExceptionOf(std::move(function_), "Floating-point exponent has exceeded internal limit:"),
      value(value_),
      limit(limit_) {}

ExponentOverflowException::ExponentOverflowException(ByteCursor& bytes)
    : ExceptionOf(bytes),
      value(static_cast<std::int64_t>(bytes.take_u64())),
      limit(static_cast<std::int64_t>(bytes.take_u64())) {}

void ExponentOverflowException::serialize(std::string& bytes) const {
    StringException::serialize(bytes);
    append_u64(bytes, static_cast<std::uint64_t>(value));
    append_u64(bytes, static_cast<std::uint64_t>(limit));
}

void ExponentOverflowException::print_body() const {
    print_line("Floating-point exponent has exceeded internal limit:");
    print_line("    Function: " + function);
    print_line("    Value: " + std::to_string(value));
    print_line("    Limit: " + std::to_string(limit));
}

BSRModularCheckFailedException::BSRModularCheckFailedException(std::string function_, std::string message_,
                                                               std::uint64_t a_, std::uint64_t b_,
                                                               std::vector<std::uint64_t> hashes_)
    : ExceptionOf(std::move(function_), std::move(message_)), a(a_), b(b_), hashes(std::move(hashes_)) {}

BSRModularCheckFailedException::BSRModularCheckFailedException(ByteCursor& bytes)
    : ExceptionOf(bytes), a(bytes.take_u64()), b(bytes.take_u64()) {
    for (std::uint32_t count = bytes.take_u32(); count > 0; --count) hashes.push_back(bytes.take_u64());
}

void BSRModularCheckFailedException::serialize(std::string& bytes) const {
    StringException::serialize(bytes);
    append_u64(bytes, a);
    append_u64(bytes, b);
    append_u32(bytes, static_cast<std::uint32_t>(hashes.size()));
    for (const std::uint64_t hash : hashes) append_u64(bytes, hash);
}

void BSRModularCheckFailedException::print_body() const {
    print_function();
    print_line(message);
    print_line("    a = " + format_number(a, NumberForm::commas));
    print_line("    b = " + format_number(b, NumberForm::commas));
    for (std::size_t i = 0; i < hashes.size(); ++i)
        print_line("    hash[" + std::to_string(i) + "] = " + std::to_string(hashes[i]));
}

MemoryAllocationFailedException::MemoryAllocationFailedException(std::string function_, std::string message_,
                                                                 std::string allocation_type_,
                                                                 std::uint64_t allocation_bytes_)
    : ExceptionOf(std::move(function_), std::move(message_)),
      allocation_type(std::move(allocation_type_)),
      allocation_bytes(allocation_bytes_) {}

MemoryAllocationFailedException::MemoryAllocationFailedException(ByteCursor& bytes)
    : ExceptionOf(bytes), allocation_type(bytes.take_string()), allocation_bytes(bytes.take_u64()) {}

void MemoryAllocationFailedException::serialize(std::string& bytes) const {
    StringException::serialize(bytes);
    append_string(bytes, allocation_type);
    append_u64(bytes, allocation_bytes);
}

void MemoryAllocationFailedException::print_body() const {
    print_function();
    print_field("Allocation Type:", allocation_type);
    print_field("Allocation Size:", allocation_bytes);
}

BufferTooSmallException::BufferTooSmallException(const char* function_, std::uint64_t buffer_size_,
                                                 std::uint64_t required_size_)
    : function(function_), buffer_size(buffer_size_), required_size(required_size_) {}

BufferTooSmallException::BufferTooSmallException(ByteCursor& bytes)
    : function(""), buffer_size(bytes.take_u64()), required_size(bytes.take_u64()) {}

void BufferTooSmallException::serialize(std::string& bytes) const {
    append_u64(bytes, buffer_size);
    append_u64(bytes, required_size);
}

void BufferTooSmallException::print_body() const {
    print_line("Buffer is too small:");
    print_field("    Function: ", function);
    print_field("    Buffer Size: ", buffer_size);
    print_field("    Required Size: ", required_size);
}

FarMemoryOutOfBoundsException::FarMemoryOutOfBoundsException(std::string function_, std::uint64_t object_size_,
                                                             std::uint64_t access_offset_, std::uint64_t access_length_)
    : function(std::move(function_)),
      object_size(object_size_),
      access_offset(access_offset_),
      access_length(access_length_) {}

FarMemoryOutOfBoundsException::FarMemoryOutOfBoundsException(ByteCursor& bytes)
    : function(bytes.take_string()),
      object_size(bytes.take_u64()),
      access_offset(bytes.take_u64()),
      access_length(bytes.take_u64()) {}

void FarMemoryOutOfBoundsException::serialize(std::string& bytes) const {
    append_string(bytes, function);
    append_u64(bytes, object_size);
    append_u64(bytes, access_offset);
    append_u64(bytes, access_length);
}

void FarMemoryOutOfBoundsException::print_body() const {
    print_line("Out-of-Bounds Access on FarMemory object:");
    print_line("    Function: " + function);
    print_line("    Object Size: " + std::to_string(object_size));
    print_line("    Access Offset: " + std::to_string(access_offset));
    print_line("    Access Length: " + std::to_string(access_length));
}

StdException::StdException(const std::exception& caught) : message(caught.what()) {}

StdException::StdException(ByteCursor& bytes) : message(bytes.take_string()) {}

void StdException::serialize(std::string& bytes) const { append_string(bytes, message); }

void StdException::print_body() const { print_line(message); }

SystemException::SystemException(std::string function_, std::string message_, std::int32_t error_code_)
    : function(std::move(function_)), message(std::move(message_)), error_code(error_code_) {}

SystemException::SystemException(ByteCursor& bytes)
    : function(bytes.take_string()),
      message(bytes.take_string()),
      error_code(static_cast<std::int32_t>(bytes.take_u32())) {}

void SystemException::serialize(std::string& bytes) const {
    append_string(bytes, function);
    append_string(bytes, message);
    append_u32(bytes, static_cast<std::uint32_t>(error_code));
}

void SystemException::print_body() const {
    if (!function.empty()) print_field("In Function:", function);
    print_field("Error Code: ", std::to_string(error_code));
    print_line();
    print_line(message);
}

} // namespace zvp
