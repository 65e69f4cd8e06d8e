#include "session/output_settings.h"

#include "app/console/console.h"
#include "app/console/number_forms.h"
#include "app/console/prompts.h"
#include "app/console/unbuilt.h"
#include "app/failure/exceptions.h"
#include "farmemory/files/path_operations.h"
#include "parallel/tasks/setting_rows.h"

#include <array>

namespace zvp {

namespace {

struct FormatRow {
    std::string_view key;
    std::string_view name;
};

/// In the order of OutputFormat.
constexpr std::array<FormatRow, 3> formats{{
    {"none", "No Digit Output"},
    {"txt", "Plain Text File (.txt)"},
    {"zvd", "Compressed ZVD (.zvd)"},
}};

OutputFormat format_of(const std::string& key) {
    for (std::size_t i = 0; i < formats.size(); ++i)
        if (formats[i].key == key) return static_cast<OutputFormat>(i);
    throw InvalidParametersException("", "Invalid Output Framework: " + key);
}

/// Of the menu.
constexpr std::uint32_t format_option = 1, path_option = 2, raw_option = 3;

/// The bytes of a file of packed digits: 19 decimal or 16 hexadecimal ones in 8 bytes.
std::uint64_t packed_bytes(std::uint64_t digits, std::uint64_t digits_per_word) {
    return (digits + digits_per_word - 1) / digits_per_word * 8;
}

std::string prompt_path() {
    print_line("\nEnter the path to write all output. (e.g. \"/mnt/disk1\" )", 'w');
    print_line("This is where both the digits and the validation file will be written to.\n");
    return prompt_line("Path: ", 'T');
}

} // namespace

OutputSettings::OutputSettings(const Object& object) {
    format = format_of(object.get_string("Framework"));
    if (format == OutputFormat::none) return;
    set_path(object.get_string("Path"));
    raw_io = object.get_boolean("RawIO");
    if (format == OutputFormat::compressed)
        set_digits_per_file(static_cast<std::uint64_t>(object.get_integer("DigitsPerFile")));
}

Object OutputSettings::to_config_object() const {
    Object object;
    object.add_string("Framework", std::string(formats[static_cast<std::size_t>(format)].key));
    if (format == OutputFormat::none) return object;
    object.add_string("Path", path);
    if (format == OutputFormat::compressed)
        object.add_integer("DigitsPerFile", static_cast<std::int64_t>(digits_per_file));
    object.add_boolean("RawIO", raw_io);
    return object;
}

std::string_view OutputSettings::display_name() const { return formats[static_cast<std::size_t>(format)].name; }

void OutputSettings::set_digits_per_file(std::uint64_t digits) {
    if (digits != 0 && (digits < min_digits_per_file || digits >> 63 != 0))
        throw InvalidParametersException("", "DigitsPerFile must be at least "
                                                 + format_number(min_digits_per_file, NumberForm::commas) + " digits.");
    digits_per_file = digits;
}

void OutputSettings::set_path(std::string new_path) {
    path = std::move(new_path);
    if (!path.empty() && path.back() != '/') path += '/';
}

std::uint64_t OutputSettings::total_bytes(const ComputationSize& size) const {
    constexpr std::uint64_t integer_part = 2; // "3."
    const std::uint64_t hexadecimal = size.hexadecimal_digits;
    switch (format) {
    case OutputFormat::none: return 0;
    case OutputFormat::text:
        return size.decimal_digits + integer_part + (hexadecimal == 0 ? 0 : hexadecimal + integer_part);
    case OutputFormat::compressed: return packed_bytes(size.decimal_digits, 19) + packed_bytes(hexadecimal, 16);
    }
    return 0;
}

void OutputSettings::check_path() const {
    if (enabled() && !FileIO::path_is_writable(path)) throw InvalidParametersException("", "Path is not writable.");
}

void OutputSettings::menu_format() {
    std::vector<std::string_view> names;
    for (const FormatRow& row : formats) names.push_back(row.name);
    OutputSettings changed = *this;
    changed.format = static_cast<OutputFormat>(choose_name("Select a Digit Output Format", names));
    if (changed.format == OutputFormat::compressed) {
        const bool split = choose_name("Size of the Files", {"Do not split. Write all digits to a single file.",
                                                             "Split. Write a number of digits to each file."})
                           == 1;
        changed.set_digits_per_file(
            split ? prompt_digits("Digits per file (0 for one file only): ", 0, ~std::uint64_t{0}) : 0);
    }
    if (changed.enabled()) changed.set_path(prompt_path());
    changed.check_path();
    *this = changed;
}

void OutputSettings::menu_path() {
    OutputSettings changed = *this;
    changed.set_path(prompt_path());
    changed.check_path();
    *this = changed;
}

void OutputSettings::print_rows(const ComputationSize& size) const {
    print_line("\n\nDigit Output:\n", 'w');
    print_setting_row(format_option, "    Format:", display_name());
    if (!enabled()) {
        print_line("\nDigit Output Disabled", 'R');
    } else {
        print_setting_row(path_option, "    Output Path:", path.empty() ? "<Default Path>" : path);
        print_setting_row(raw_option, "    Raw I/O:", raw_io ? "Enabled" : "Disabled");
        constexpr std::size_t label_width = 36; // of the rows above
        print_labelm_line(label_width, "        Total Output Size:", format_bytes(total_bytes(size)), 'P');
    }
    print_line("\n   0    Done!\n", 'w');
}

void OutputSettings::menu(const ComputationSize& size) {
    for (;;) {
        print_rows(size);
        try {
            switch (prompt_option(0, enabled() ? raw_option : format_option)) {
            case format_option: menu_format(); break;
            case path_option: menu_path(); break;
            case raw_option: raw_io = !raw_io; break;
            default: return;
            }
        } catch (const InvalidParametersException& refusal) {
            print_warning(refusal.message);
        }
    }
}

} // namespace zvp
