#include "app/notation/config_file.h"

#include "app/console/console.h"
#include "app/console/prompts.h"
#include "app/failure/file_exceptions.h"
#include "app/notation/parser.h"
#include "app/notation/text_file.h"
#include "platform/file.h"

namespace zvp {

std::string config_path(std::string path) {
    if (path.find('.') == std::string::npos) path += ".cfg";
    return path;
}

std::unique_ptr<Node> load_notation_file(const std::string& path) { return parse_notation_text(load_text_file(path)); }

std::string config_file_text(std::string_view version, std::string_view action, const Object& settings) {
    Object root;
    root.add_string("Action", std::string(action));
    root.add_node(std::string(action), settings.clone());
    return "//  zorvane Configuration File\r\n"
           "//  Version: "
           + std::string(version)
           + "\r\n"
             "//\r\n"
             "//  Load this from zorvane or run directly:\r\n"
             "//      zorvane config filename.cfg\r\n"
             "//\r\n"
             "//  If you're copying Windows file paths into here, be sure to replace\r\n"
             "//  all backslashes \"\\\" with forward slashes \"/\". Backslash is an\r\n"
             "//  escape character.\r\n"
             "//\r\n"
             "\r\n"
           + root.to_text(0);
}

void save_config_file(std::string_view version, std::string_view action, const Object& settings) {
    print_line("Enter path to save configuration file. (the .cfg extension can be omitted)");
    const std::string name = prompt_line("", 'T');
    if (name.empty()) return;
    const std::string path = config_path(name);
    if (const int error = platform::write_whole_file(path, config_file_text(version, action, settings)); error != 0)
        throw FileIO::FileException("save_config_file()", with_system_error("Unable to create file.", error), path,
                                    error);
}

} // namespace zvp
