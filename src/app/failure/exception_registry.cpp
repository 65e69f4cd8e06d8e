#include "app/failure/exception_registry.h"

#include "app/failure/exceptions.h"
#include "app/failure/file_exceptions.h"

namespace zvp {

namespace {

template <class... Classes>
std::vector<std::pair<std::string, ExceptionFactory>> rows_of() {
    return {{Classes::type_name,
             [](ByteCursor& bytes) -> std::unique_ptr<Exception> { return std::make_unique<Classes>(bytes); }}...};
}

} // namespace

const Registry<ExceptionFactory>& exception_registry() {
    static const Registry<ExceptionFactory> registry(
        "Duplicate Exception Type",
        rows_of<StringException, LimitExceededException, InvalidParametersException, InvalidTransformException,
                TransformTooSmallException, ConvolutionTooSmallException, ParseException, EndOfStreamException,
                KeyNotFoundException, ArithmeticException, ExponentOverflowException, AlgorithmFailedException,
                ConvolutionFailedException, BSRModularCheckFailedException, ResourceAcquisitionFailedException,
                MemoryAllocationFailedException, FarMemoryException, UnsupportedValueException,
                UnsupportedZeroException, UnsupportedNegativeException, StressTest::StressTestFailedException,
                BufferTooSmallException, FarMemoryOutOfBoundsException, StdException, SystemException,
                FileIO::FileException, DiskRaid0::Raid0Exception, R03::Raid03Exception>());
    return registry;
}

std::unique_ptr<Exception> rebuild_exception(std::string_view type_name, ByteCursor& bytes) {
    const ExceptionFactory* factory = exception_registry().find(type_name);
    return factory ? (*factory)(bytes) : nullptr;
}

} // namespace zvp
