#include "app/notation/command_line.h"

#include "app/failure/exceptions.h"
#include "app/notation/nearest_word.h"

namespace CommandLine {

CommandLine::CommandLine(std::vector<std::string> parameters) : raw(std::move(parameters)) {
    split.reserve(raw.size());
    for (const std::string& parameter : raw) {
        const std::size_t colon = parameter.find(':');
        if (colon == std::string::npos) {
            split.emplace_back(parameter, "");
        } else {
            split.emplace_back(parameter.substr(0, colon), parameter.substr(colon + 1));
        }
    }
}

std::size_t CommandLine::checked_cursor() const {
    if (at_end()) throw CommandLineException("Expected more parameters.");
    return cursor;
}

const std::string& CommandLine::take_value() {
    const std::string& taken = value();
    advance();
    return taken;
}

const std::string& CommandLine::take_parameter() {
    const std::string& taken = parameter();
    advance();
    return taken;
}

void reject_parameter(const CommandLine& line, const std::vector<std::string>& known) {
    throw zvp::InvalidParametersException("", "Invalid Command: " + line.parameter()
                                                  + nearest_word_hint(line.key(), known));
}

} // namespace CommandLine
