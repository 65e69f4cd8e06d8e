#include "app/console/process_switches.h"
#include "app/failure/exception_registry.h"
#include "app/failure/file_exceptions.h"
#include "support/program.h"

#include <set>
#include <stdexcept>
#include <string>
#include <typeinfo>
#include <unistd.h>

namespace {

using namespace zvp;
using test::printed_by;

/// An exception and what it prints.
struct Sample {
    std::shared_ptr<const Exception> exception;
    std::string report;
};

template <class Class>
Sample sample(const Class& made, const std::string& body, const std::string& heading = "Exception") {
    const std::string first = heading + " Encountered: " + made.get_typename();
    return {std::make_shared<Class>(made), "\n" + first + "\n\n" + body + "\n\n\n"};
}

/// Of the classes that add no field.
template <class... Classes>
std::vector<Sample> plain_samples() {
    return {sample(Classes("f()", "text"), "In Function: f()\n\ntext")...};
}

std::vector<Sample> samples() {
    std::vector<Sample> all{
        sample(StringException("", "text"), "text"),
        sample(LimitExceededException("f()", "text", 5, ~std::uint64_t{0} - 1),
               "Limit Exceeded:\n    Function: f()\ntext\n    Limit: 5\n    Attempted: 18446744073709551614"),
        sample(LimitExceededException("", "text", LimitExceededException::unknown_limit, 6),
               "text\n    Limit: Unknown\n    Attempted: 6"),
        sample(ConvolutionTooSmallException("f()", "text", 5, 6),
               "In Function: f()\n\nLimit Exceeded:\n    Message: text\n    Convolution Size: 5\n    Requested "
               "Size: 6"),
        sample(ExponentOverflowException("f()", -7, INT64_MIN),
               "Floating-point exponent has exceeded internal limit:\n    Function: f()\n    Value: -7\n"
               "    Limit: -9223372036854775808"),
        sample(BSRModularCheckFailedException("f()", "text", 1, 2, {3, 4}),
               "In Function: f()\n\ntext\n    a = 1\n    b = 2\n    hash[0] = 3\n    hash[1] = 4"),
        sample(MemoryAllocationFailedException("f()", "text", "malloc()", 4096),
               "In Function: f()\n\nAllocation Type:    malloc()\nAllocation Size:    4096"),
        sample(BufferTooSmallException("f()", 5, 6),
               "Buffer is too small:\n    Function:       f()\n    Buffer Size:    5\n    Required Size:  6"),
        sample(FarMemoryOutOfBoundsException("f()", 5, 6, 7),
               "Out-of-Bounds Access on FarMemory object:\n    Function: f()\n    Object Size: 5\n"
               "    Access Offset: 6\n    Access Length: 7"),
        sample(StdException(std::runtime_error("text")), "text"),
        sample(SystemException("f()", "text", 0), "In Function:        f()\nError Code:         0\n\ntext",
               "System Exception"),
        sample(FileIO::FileException("f()", "text", "a/b", 2),
               "In Function:        f()\nError Code:         2\nPath:   a/b\n\ntext"),
        sample(FileIO::FileException("", "text", "a/b", 0), "Path:   a/b\n\ntext"),
        sample(DiskRaid0::Raid0Exception("", "text", "a/b", -3), "Error Code:         -3\nPath:   a/b\n\ntext"),
        sample(R03::Raid03Exception("f()", "text", "", 0), "In Function:        f()\nPath:   \n\ntext",
               "Raid03 Exception")};
    const std::vector<Sample> plain =
        plain_samples<StringException, InvalidParametersException, InvalidTransformException,
                      TransformTooSmallException, ParseException, EndOfStreamException, KeyNotFoundException,
                      ArithmeticException, AlgorithmFailedException, ConvolutionFailedException,
                      ResourceAcquisitionFailedException, FarMemoryException, UnsupportedValueException,
                      UnsupportedZeroException, UnsupportedNegativeException, StressTest::StressTestFailedException>();
    all.insert(all.end(), plain.begin(), plain.end());
    return all;
}

TEST(Exceptions, PrintTheirLayoutAndKeepTypeAndFieldsInCopies) {
    for (const Sample& sample : samples()) {
        const Exception& exception = *sample.exception;
        EXPECT_EQ(printed_by([&] { exception.print(); }), sample.report);
        const std::unique_ptr<Exception> clone = exception.clone();
        try {
            clone->fire();
        } catch (const Exception& thrown) {
            EXPECT_EQ(typeid(thrown), typeid(exception));
            EXPECT_EQ(printed_by([&] { thrown.print(); }), sample.report);
        }
    }
    const DigitViewer2::InconsistentMetaData inconsistent("f()", "text", "a/b", 0);
    EXPECT_THROW(static_cast<const Exception&>(inconsistent).fire(), DigitViewer2::InconsistentMetaData);
}

TEST(ExceptionBytes, RebuildTheSameReport) {
    std::set<std::string> rebuilt_types;
    for (const Sample& sample : samples()) {
        const std::string type = sample.exception->get_typename();
        SCOPED_TRACE(type);
        std::string bytes;
        sample.exception->serialize(bytes);
        ByteCursor cursor(bytes);
        const auto rebuilt = rebuild_exception(type, cursor);
        ASSERT_TRUE(rebuilt);
        EXPECT_TRUE(cursor.at_end());
        EXPECT_STREQ(rebuilt->get_typename(), type.c_str());
        std::string report = sample.report;
        if (type == "BufferTooSmallException") report.replace(report.find("f()"), 3, ""); // isn't sent
        EXPECT_EQ(printed_by([&] { rebuilt->print(); }), report);
        for (std::size_t size = 0; size < bytes.size(); ++size) {
            ByteCursor cut(std::string_view(bytes).substr(0, size));
            EXPECT_THROW(rebuild_exception(type, cut), EndOfStreamException) << size << " bytes";
        }
        rebuilt_types.insert(type);
    }
    const auto& names = exception_registry().names();
    EXPECT_EQ(rebuilt_types, std::set<std::string>(names.begin(), names.end()));
    ByteCursor nothing("");
    EXPECT_FALSE(rebuild_exception("NoSuchException", nothing));
}

TEST(ExceptionBytes, AreLittleEndianAndInOrder) {
    using namespace std::string_literals;
    const std::pair<std::shared_ptr<Exception>, std::string> rows[] = {
        {std::make_shared<MemoryAllocationFailedException>("f", "", "ab", 0x0102030405060708),
         "\1\0\0\0f\0\0\0\0\2\0\0\0ab\x08\7\6\5\4\3\2\1"s},
        {std::make_shared<FileIO::FileException>("", "m", "p", -2), "\0\0\0\0\1\0\0\0m\1\0\0\0p\xFE\xFF\xFF\xFF"s},
        {std::make_shared<BufferTooSmallException>("f", 1, 2), "\1\0\0\0\0\0\0\0\2\0\0\0\0\0\0\0"s},
    };
    for (const auto& [exception, expected] : rows) {
        std::string bytes = "before";
        exception->serialize(bytes);
        EXPECT_EQ(bytes, "before" + expected) << exception->get_typename();
    }
    ByteCursor hostile("\xFF\xFF\xFF\xFF"); // a string of 4 GiB
    EXPECT_THROW(rebuild_exception("StdException", hostile), EndOfStreamException);
}

TEST(Registry, RepeatedNameStopsTheProcess) {
    const auto fill = [] {
        process_switches().pause_on_fatal_exit = false;
        dup2(STDERR_FILENO, STDOUT_FILENO);
        const Registry<int> registry("Duplicate Exception Type", {{"A", 1}, {"B", 2}, {"A", 3}});
    };
    EXPECT_EXIT(fill(), testing::ExitedWithCode(1), "^\nDuplicate Exception Type\n$");
}

} // namespace
