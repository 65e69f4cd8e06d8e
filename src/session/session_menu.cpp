// The screen of a computation in memory, and what its options do.

#include "app/console/build_info.h"
#include "app/console/console.h"
#include "app/console/number_forms.h"
#include "app/console/prompts.h"
#include "app/console/unbuilt.h"
#include "app/notation/config_file.h"
#include "parallel/tasks/setting_rows.h"
#include "session/normal_float_session_b.h"

#include <algorithm>
#include <vector>

namespace zvp {

namespace {

constexpr std::size_t label_width = 32;

void print_row(std::string_view label, std::string_view value, char color) {
    print_labelm_line(label_width, label, value, color);
}

void print_digits_row(std::string_view label, std::uint64_t digits) {
    print_row(label, digits == 0 ? "Disabled" : format_number(digits, NumberForm::commas), digits == 0 ? 'R' : 'G');
}

/// What the settings need, also if that is too much; settings without a plan have no size.
std::string memory_text(const NormalFloatSessionB& session) {
    return session.plan ? format_bytes(session.total_memory()) : "?";
}

void print_memory_rows(const NormalFloatSessionB& session) {
    const std::uint64_t output = session.settings->output.total_bytes(session.settings->size);
    print_labelm(label_width, "  9     Logical Memory Needed:", memory_text(session), session.obstacle ? 'R' : 'G');
    print("     ");
    print_line(session.allocator->allocator->display_name(), 'T');
    set_color('w');
    print_labelm(label_width, "        Logical Disk Needed:", format_bytes(0), 'p');
    print("  +  ", 'w');
    print(format_bytes(output), output > 0 ? 'P' : 'p');
    print_line(" for output", 'w');
}

/// One of the options; anything else is asked again.
std::uint32_t prompt_listed_option(const std::vector<std::uint32_t>& options) {
    for (;;) {
        const std::uint32_t option = prompt_option(0, *std::max_element(options.begin(), options.end()));
        if (std::find(options.begin(), options.end(), option) != options.end()) return option;
    }
}

/// Only the mode that there is can be chosen.
void mode_menu(const NormalFloatSessionB& session) {
    print_line("\n\nSelect a Mode:\n", 'w');
    print_line("Option      Mode            Memory      Disk Memory\n");
    print(" 1      Ram Only            ");
    print_line(memory_text(session), session.obstacle ? 'R' : 'G');
    print("        Swap Mode           ", 'w');
    print_line(unbuilt_text(""), 'R');
    print_line("\n    *Disk usage varies with the amount of memory that is being used.\n"
               "    More memory usually means more disk usage. The value shown here is for\n"
               "    the lowest possible amount of working memory.\n"
               "\n"
               "    Memory and disk usage estimates are provable upper-bounds for what they\n"
               "    are measuring. But they do not include unmeasureable overheads such as\n"
               "    run-time libraries, bookkeeping, OS system memory, etc...\n"
               "\n"
               "    Disk usage estimates is for the amount of logical data. Overheads such as\n"
               "    redundant RAID will cause the actual disk requirement to be higher than\n"
               "    what is displayed.\n",
               'w');
    prompt_option(1, 1);
}

/// The memory that is needed, and where it comes from.
void memory_menu(NormalFloatSessionB& session) {
    std::unique_ptr<MemoryAllocator>& allocator = session.allocator->allocator;
    for (;;) {
        print_line("\n\nMemory Settings\n", 'w');
        print_row("    Twiddle Factor Tables", format_bytes(session.twiddle_memory), 'G');
        print_row("    Working Memory", format_bytes(session.working_memory), 'G');
        print_row("        Scratch per Task", format_bytes(session.task_scratch), 'G');
        print_line("  ----------------------------------------");
        print_row("    Total Memory", format_bytes(session.total_memory()), 'G');
        print_line("\nOptions:\n");
        print_line("   1    Adjust Total Memory (not available in this mode)");
        print_setting_row(2, "    Memory Allocator:", allocator->display_name());
        constexpr std::uint32_t first_own_row = 3;
        const std::uint32_t end = allocator->print_menu_rows(first_own_row);
        print_line("\n   0    Done!\n");
        const std::uint32_t option = prompt_option(0, end - 1);
        if (option == 0) return;
        if (option == 2) allocator = select_allocator();
        if (option >= first_own_row) allocator->menu_select(option - first_own_row);
    }
}

/// Reads the settings of a file that the user names; an empty answer reads nothing. Raises ConfigLoadException; the settings are as they were then.
void load_settings(NormalFloatSessionB& session) {
    print_line("\nEnter path to load configuration file. (the .cfg extension can be omitted)");
    const std::string name = prompt_line("", 'T');
    if (name.empty()) return;
    const std::string path = config_path(name);
    try {
        const std::unique_ptr<Node> root = load_notation_file(path);
        const Object& file = root->as_object("load_settings()");
        const std::string& action = file.get_string("Action");
        if (action != "CustomCompute") throw InvalidParametersException("", "Invalid Action: " + action);
        const Object& settings = file.get_object(action);
        if (settings.get_string("Mode") == "swap") return print_unbuilt(swap_mode_name); // the menu goes on
        session.load(settings);
    } catch (const Exception& failure) {
        throw ConfigLoadException{failure.clone()};
    }
}

void act(NormalFloatSessionB& session, std::uint32_t option) {
    ConstantSettings& settings = *session.settings;
    constexpr std::uint64_t any = ~std::uint64_t{0}; // the settings tell the limits
    switch (option) {
    case 1:
        if (std::unique_ptr<Constant> chosen = choose_constant()) settings.set_constant(std::move(chosen));
        break;
    case 2: settings.constant->algorithm_menu(); break;
    case 3:
        print_line("\n\nSelect the # of decimal digits to compute:\n", 'w');
        settings.set_decimal_digits(prompt_digits("Digits: ", 0, any));
        break;
    case 4:
        print_line("\n\nSelect the # of hexadecimal digits to compute: (0 to disable)\n", 'w');
        settings.set_hexadecimal_digits(prompt_digits("Digits: ", 0, any));
        break;
    case 5: settings.output.menu(settings.size); break;
    case 6: settings.verify_output = !settings.verify_output; break;
    case 7: mode_menu(session); break;
    case 8: session.parallelism->menu(); break;
    case 9: memory_menu(session); break;
    case 20: load_settings(session); break;
    case 21: save_config_file(version_text(), "CustomCompute", session.to_config()); break;
    }
}

} // namespace

bool NormalFloatSessionB::print() const {
    const ComputationSize& size = settings->size;
    print_line("\n\nCustom Compute a Constant\n", 'Y');
    set_color('w');
    print_row("  1     Constant:", name_long, display_color);
    print_row("  2     Algorithm:", settings->constant->algorithm_name(), 'Y');
    print_digits_row("  3     Decimal Digits:", size.decimal_digits);
    print_digits_row("  4     Hexadecimal Digits:", size.hexadecimal_digits);
    print_line();
    print_row("  5     Digit Output:", settings->output.display_name(), settings->output.enabled() ? 'G' : 'R');
    if (settings->output.enabled())
        print_row("  6     Verify Output:", settings->verify_output ? "Enabled" : "Disabled",
                  settings->verify_output ? 'G' : 'R');
    print_line();
    print_row("  7     Computation Mode:", "Ram Only", 'R');
    print_row("  8     Multi-Threading:", parallelism->framework->summary(parallelism->task_decomposition), 'G');
    print_memory_rows(*this);
    if (!obstacle) return true;
    print_line();
    print_line(obstacle->reason, 'R');
    set_color('w');
    return false;
}

void NormalFloatSessionB::menu(bool offer_start) {
    for (;;) {
        const bool good = print();
        print_line();
        zvp::print(" 20/21  ", 'w');
        print_line("Load/Save Configuration File", 'g');
        print_line();
        // Settings for a later version may be edited and saved, if not run.
        const bool ends = good || (!offer_start && !obstacle->unbuilt.empty());
        if (ends) print_line(offer_start ? "  0     Start Computation!" : "  0     Finish", 'G');
        print_line("", 'w');
        std::vector<std::uint32_t> options{1, 2, 3, 4, 5, 7, 8, 9, 20, 21};
        if (ends) options.push_back(0);
        if (settings->output.enabled()) options.push_back(6);
        const std::uint32_t option = prompt_listed_option(options);
        if (option == 0) return;
        try {
            act(*this, option);
        } catch (const ConfigLoadException& failure) {
            failure.cause->print();
        } catch (const Exception& failure) {
            failure.print();
        }
        update(); // a refused option may have changed something before
    }
}

} // namespace zvp
