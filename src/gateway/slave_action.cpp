#include "gateway/slave_action.h"

#include "app/console/unbuilt.h"
#include "app/console/value_parsers.h"
#include "app/failure/exceptions.h"
#include "app/notation/typed_values.h"

#include <limits>

namespace zorvane {

namespace {

using Line = CommandLine::CommandLine;

void take_port(SlaveRequest& request, Line& line) {
    const std::uint64_t port = zvp::parse_uL(line.value());
    if (port == 0 || port > std::numeric_limits<std::uint16_t>::max())
        throw zvp::InvalidParametersException("", "Invalid port: " + line.value());
    request.port = static_cast<std::uint16_t>(port);
    line.advance();
}

void take_config_type(SlaveRequest& request, Line& line) {
    if (line.value() != "json" && line.value() != "acfg")
        throw zvp::InvalidParametersException("", "Invalid config type: " + line.value());
    request.json = line.take_value() == "json";
}

} // namespace

const CommandLine::OptionTable<SlaveRequest>& slave_options() {
    static const CommandLine::OptionTable<SlaveRequest> table({
        {"-port", take_port},
        {"-ctype", take_config_type},
        {"-allowremote",
         [](auto& request, auto& line) { request.allow_remote = CommandLine::read_s64(line.take_value()) != 0; }},
        {"-printtraffic",
         [](auto& request, auto& line) { request.print_traffic = CommandLine::read_s64(line.take_value()) > 0; }},
    });
    return table;
}

void slave_action(Line& line) {
    const std::string& version = line.take_parameter();
    const bool is_number = version.find_first_not_of("0123456789") == std::string::npos && !version.empty();
    if (!is_number || zvp::parse_uL(version) != 0)
        throw zvp::InvalidParametersException("SlaveMode::run()", "Unsupported version number: " + version);
    SlaveRequest request;
    CommandLine::apply_options(slave_options(), request, line);
    zvp::stop_unbuilt("Slave Mode (action \"slave\")");
}

} // namespace zorvane
