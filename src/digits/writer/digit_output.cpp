#include "digits/writer/digit_output.h"

#include "app/console/unbuilt.h"
#include "app/failure/exceptions.h"
#include "digits/text/text_writer.h"

namespace zvp {

std::unique_ptr<DigitViewer2::BasicDigitWriter>
DigitOutput::make_writer(const std::string& name, const std::string& first, unsigned radix) const {
    if (format == OutputFormat::none) throw InvalidParametersException("DigitOutput::make_writer()", "No output.");
    if (format == OutputFormat::compressed) stop_unbuilt("The compressed digit format (.zvd)");
    return std::make_unique<DigitViewer2::BasicTextWriter>(path + name + ".txt", first, radix, raw_io);
}

} // namespace zvp
