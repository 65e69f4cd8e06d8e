#pragma once
// The exceptions of the library. A constructor takes the name of the throwing function first, as
// "Class::method()" (it may be empty), then the message. A constructor from a ByteCursor reads the class's byte
// form.

#include "app/failure/byte_cursor.h"
#include "app/failure/exception.h"

#include <cstdint>
#include <exception>
#include <string>
#include <string_view>
#include <vector>

namespace zvp {

class StringException : public ExceptionOf<StringException, Exception> {
public:
    static constexpr const char* type_name = "StringException";

    StringException(std::string function_, std::string message_);
    explicit StringException(ByteCursor& bytes);
    void serialize(std::string& bytes) const override;

    std::string function;
    std::string message;

protected:
    void print_body() const override;
    void print_function() const;
};

/// A setting, a length or a count beyond what an operation takes.
class LimitExceededException : public ExceptionOf<LimitExceededException, StringException> {
public:
    static constexpr const char* type_name = "LimitExceededException";
    static constexpr std::uint64_t unknown_limit = ~std::uint64_t{0};

    LimitExceededException(std::string function_, std::string message_, std::uint64_t limit_, std::uint64_t attempted_);
    explicit LimitExceededException(ByteCursor& bytes);
    void serialize(std::string& bytes) const override;

    std::uint64_t limit;
    std::uint64_t attempted;

protected:
    void print_body() const override;
};

class InvalidParametersException : public ExceptionOf<InvalidParametersException, StringException> {
public:
    static constexpr const char* type_name = "InvalidParametersException";
    using ExceptionOf::ExceptionOf;
};

class InvalidTransformException : public ExceptionOf<InvalidTransformException, InvalidParametersException> {
public:
    static constexpr const char* type_name = "InvalidTransformException";
    using ExceptionOf::ExceptionOf;
};

class TransformTooSmallException : public ExceptionOf<TransformTooSmallException, InvalidTransformException> {
public:
    static constexpr const char* type_name = "TransformTooSmallException";
    using ExceptionOf::ExceptionOf;
};

class ConvolutionTooSmallException : public ExceptionOf<ConvolutionTooSmallException, InvalidTransformException> {
public:
    static constexpr const char* type_name = "ConvolutionTooSmallException";

    ConvolutionTooSmallException(std::string function_, std::string message_, std::uint64_t convolution_size_,
                                 std::uint64_t requested_size_);
    explicit ConvolutionTooSmallException(ByteCursor& bytes);
    void serialize(std::string& bytes) const override;

    std::uint64_t convolution_size;
    std::uint64_t requested_size;

protected:
    void print_body() const override;
};

class ParseException : public ExceptionOf<ParseException, StringException> {
public:
    static constexpr const char* type_name = "ParseException";
    using ExceptionOf::ExceptionOf;
};

class EndOfStreamException : public ExceptionOf<EndOfStreamException, ParseException> {
public:
    static constexpr const char* type_name = "EndOfStreamException";
    using ExceptionOf::ExceptionOf;
};

class KeyNotFoundException : public ExceptionOf<KeyNotFoundException, ParseException> {
public:
    static constexpr const char* type_name = "KeyNotFoundException";
    using ExceptionOf::ExceptionOf;
};

class ArithmeticException : public ExceptionOf<ArithmeticException, StringException> {
public:
    static constexpr const char* type_name = "ArithmeticException";
    using ExceptionOf::ExceptionOf;
};

class ExponentOverflowException : public ExceptionOf<ExponentOverflowException, ArithmeticException> {
public:
    static constexpr const char* type_name = "ExponentOverflowException";

    ExponentOverflowException(std::string function_, std::int64_t value_, std::int64_t limit_);
    explicit ExponentOverflowException(ByteCursor& bytes);
    void serialize(std::string& bytes) const override;

    std::int64_t value;
    std::int64_t limit;

protected:
    void print_body() const override;
};

/// An algorithm found that its own result is wrong: a fault of the arithmetic, the memory or the processor.
class AlgorithmFailedException : public ExceptionOf<AlgorithmFailedException, StringException> {
public:
    static constexpr const char* type_name = "AlgorithmFailedException";
    using ExceptionOf::ExceptionOf;
};

class ConvolutionFailedException : public ExceptionOf<ConvolutionFailedException, AlgorithmFailedException> {
public:
    static constexpr const char* type_name = "ConvolutionFailedException";
    using ExceptionOf::ExceptionOf;
};

/// The residues of a block of series terms [a, b) contradict each other.
class BSRModularCheckFailedException : public ExceptionOf<BSRModularCheckFailedException, AlgorithmFailedException> {
public:
    static constexpr const char* type_name = "BSRModularCheckFailedException";

    BSRModularCheckFailedException(std::string function_, std::string message_, std::uint64_t a_, std::uint64_t b_,
                                   std::vector<std::uint64_t> hashes_);
    explicit BSRModularCheckFailedException(ByteCursor& bytes);
    void serialize(std::string& bytes) const override;

    std::uint64_t a;
    std::uint64_t b;
    std::vector<std::uint64_t> hashes;

protected:
    void print_body() const override;
};

class ResourceAcquisitionFailedException : public ExceptionOf<ResourceAcquisitionFailedException, StringException> {
public:
    static constexpr const char* type_name = "ResourceAcquisitionFailedException";
    using ExceptionOf::ExceptionOf;
};

class MemoryAllocationFailedException
    : public ExceptionOf<MemoryAllocationFailedException, ResourceAcquisitionFailedException> {
public:
    static constexpr const char* type_name = "MemoryAllocationFailedException";

    MemoryAllocationFailedException(std::string function_, std::string message_, std::string allocation_type_,
                                    std::uint64_t allocation_bytes_);
    explicit MemoryAllocationFailedException(ByteCursor& bytes);
    void serialize(std::string& bytes) const override;

    std::string allocation_type;
    std::uint64_t allocation_bytes;

protected:
    void print_body() const override;
};

class FarMemoryException : public ExceptionOf<FarMemoryException, StringException> {
public:
    static constexpr const char* type_name = "FarMemoryException";
    using ExceptionOf::ExceptionOf;
};

class UnsupportedValueException : public ExceptionOf<UnsupportedValueException, StringException> {
public:
    static constexpr const char* type_name = "UnsupportedValueException";
    using ExceptionOf::ExceptionOf;
};

class UnsupportedZeroException : public ExceptionOf<UnsupportedZeroException, UnsupportedValueException> {
public:
    static constexpr const char* type_name = "UnsupportedZeroException";
    using ExceptionOf::ExceptionOf;
};

class UnsupportedNegativeException : public ExceptionOf<UnsupportedNegativeException, UnsupportedValueException> {
public:
    static constexpr const char* type_name = "UnsupportedNegativeException";
    using ExceptionOf::ExceptionOf;
};

/// A buffer below the size that a size query told. Its function name isn't part of its byte form.
class BufferTooSmallException : public ExceptionOf<BufferTooSmallException, Exception> {
public:
    static constexpr const char* type_name = "BufferTooSmallException";

    /// `function_` is a literal: only the pointer is kept.
    BufferTooSmallException(const char* function_, std::uint64_t buffer_size_, std::uint64_t required_size_);
    explicit BufferTooSmallException(ByteCursor& bytes);
    void serialize(std::string& bytes) const override;

    const char* function;
    std::uint64_t buffer_size;
    std::uint64_t required_size;

protected:
    void print_body() const override;
};

class FarMemoryOutOfBoundsException : public ExceptionOf<FarMemoryOutOfBoundsException, Exception> {
public:
    static constexpr const char* type_name = "FarMemoryOutOfBoundsException";

    FarMemoryOutOfBoundsException(std::string function_, std::uint64_t object_size_, std::uint64_t access_offset_,
                                  std::uint64_t access_length_);
    explicit FarMemoryOutOfBoundsException(ByteCursor& bytes);
    void serialize(std::string& bytes) const override;

    std::string function;
    std::uint64_t object_size;
    std::uint64_t access_offset;
    std::uint64_t access_length;

protected:
    void print_body() const override;
};

/// A standard exception, taken into the family so that it can be kept and sent like the others.
class StdException : public ExceptionOf<StdException, Exception> {
public:
    static constexpr const char* type_name = "StdException";

    explicit StdException(const std::exception& caught);
    explicit StdException(ByteCursor& bytes);
    void serialize(std::string& bytes) const override;

    std::string message;

protected:
    void print_body() const override;
};

/// A system call that failed; error_code is errno's value.
class SystemException : public ExceptionOf<SystemException, Exception> {
public:
    static constexpr const char* type_name = "SystemException";

    SystemException(std::string function_, std::string message_, std::int32_t error_code_);
    explicit SystemException(ByteCursor& bytes);
    void serialize(std::string& bytes) const override;

    std::string function;
    std::string message;
    std::int32_t error_code;

protected:
    const char* heading() const override { return "System Exception Encountered"; }
    void print_body() const override;
};

/// The control flow of menus; not members of the family.
struct ModeChangeException {};       // the user changed the compute mode: the menu starts again on the other session
struct ModeNotSupportedException {}; // a constant that has no far-memory form

/// A configuration file that didn't load; the menu that asked for it prints `cause` and goes on.
struct ConfigLoadException {
    std::shared_ptr<const Exception> cause;
};

} // namespace zvp

namespace StressTest {

class StressTestFailedException : public zvp::ExceptionOf<StressTestFailedException, zvp::StringException> {
public:
    static constexpr const char* type_name = "StressTestFailedException";
    using ExceptionOf::ExceptionOf;
};

} // namespace StressTest
