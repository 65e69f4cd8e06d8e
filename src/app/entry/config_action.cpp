#include "app/entry/config_action.h"

#include "app/console/unbuilt.h"
#include "app/failure/exceptions.h"
#include "app/notation/config_file.h"
#include "ioanalysis/benchio_action.h"
#include "session/custom_action.h"
#include "stress/stress_action.h"

namespace zorvane {

const zvp::Registry<ConfigAction>& config_actions() {
    static const zvp::Registry<ConfigAction> table(
        "Duplicate Action", {
                                {"CustomCompute", run_custom_config},
                                {"BenchIO", [](const zvp::Object&) { zvp::stop_unbuilt(benchio_name); }},
                                {"StressTest", [](const zvp::Object&) { zvp::stop_unbuilt(StressTest::action_name); }},
                            });
    return table;
}

void config_action(CommandLine::CommandLine& line) {
    if (line.at_end()) throw CommandLine::CommandLineException("Please specify a config file.");
    const std::string path = zvp::config_path(line.take_parameter());
    const std::unique_ptr<zvp::Node> root = zvp::load_notation_file(path);
    const zvp::Object& file = root->as_object("config_action()");
    const std::string& name = file.get_string("Action");
    const ConfigAction* action = config_actions().find(name);
    if (!action) throw zvp::InvalidParametersException("", "Invalid Action: " + name);
    (*action)(file.get_object(name));
}

} // namespace zorvane
