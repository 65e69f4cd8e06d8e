#pragma once
// Failures of files and of the arrays built on them: a path and a system error code beside the message.

#include "app/failure/exceptions.h"
#include "platform/system_error.h"

namespace zvp {

/// What the file exceptions have in common.
class PathException : public Exception {
public:
    PathException(std::string function_, std::string message_, std::string path_, std::int32_t error_code_);
    explicit PathException(ByteCursor& bytes);
    void serialize(std::string& bytes) const override;

    std::string function;
    std::string message;
    std::string path;
    std::int32_t error_code; // errno's value; 0 when the failure isn't the system's

protected:
    void print_body() const override;
};

/// The message of a failed system call: `message`, two newlines, and the program's text for the code.
std::string with_system_error(std::string_view message, std::int32_t error_code,
                              platform::FaultDirection direction = platform::FaultDirection::none);

} // namespace zvp

namespace FileIO {

class FileException : public zvp::ExceptionOf<FileException, zvp::PathException> {
public:
    static constexpr const char* type_name = "FileException";
    using ExceptionOf::ExceptionOf;
};

} // namespace FileIO

namespace DigitViewer2 {

/// Digit files that contradict each other. Caught by their readers, so it isn't registered.
class InconsistentMetaData : public zvp::ExceptionOf<InconsistentMetaData, FileIO::FileException> {
public:
    static constexpr const char* type_name = "InconsistentMetaData";
    using ExceptionOf::ExceptionOf;
};

} // namespace DigitViewer2

namespace DiskRaid0 {

class Raid0Exception : public zvp::ExceptionOf<Raid0Exception, zvp::PathException> {
public:
    static constexpr const char* type_name = "Raid0Exception";
    using ExceptionOf::ExceptionOf;
};

} // namespace DiskRaid0

namespace R03 {

class Raid03Exception : public zvp::ExceptionOf<Raid03Exception, zvp::PathException> {
public:
    static constexpr const char* type_name = "Raid03Exception";
    using ExceptionOf::ExceptionOf;

protected:
    const char* heading() const override { return "Raid03 Exception Encountered"; }
};

} // namespace R03
