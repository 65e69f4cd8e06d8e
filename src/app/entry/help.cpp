#include "app/entry/help.h"

#include "app/console/banner.h"
#include "app/console/build_info.h"
#include "app/console/console.h"
#include "app/console/text_width.h"
#include "app/console/unbuilt.h"
#include "app/entry/actions.h"
#include "app/entry/global_options.h"
#include "app/notation/nearest_word.h"
#include "constants/catalog/constant_catalog.h"
#include "gateway/slave_action.h"
#include "ioanalysis/benchio_action.h"
#include "parallel/memory/allocator_registry.h"
#include "parallel/tasks/framework_config.h"
#include "session/bench_action.h"
#include "session/custom_action.h"
#include "stress/stress_action.h"

#include <algorithm>

namespace zorvane {

namespace {

using Names = std::vector<std::string>;
using zvp::print_line;

struct ActionHelp {
    std::string_view name;
    std::string_view form; // what may follow it
    std::string_view text;
    const Names& (*options)(); // of its table; null for an action without one
    bool built;
};

constexpr ActionHelp actions[] = {
    {"custom", "[constant [options]]", "computes a constant; without one its menu opens",
     []() -> const Names& { return custom_options().names(); }, true},
    {"bbp", "", "hexadecimal digits of Pi at any position, without those before it (a menu)", nullptr, true},
    {"config", "file", "runs a saved configuration; \".cfg\" can be omitted", nullptr, true},
    {"about", "", "what this program is", nullptr, true},
    {"bench", "[size [options]]", "the benchmark: Pi in memory",
     []() -> const Names& { return bench_options().names(); }, false},
    {"stress", "[tests and options]", "the component stress tester",
     []() -> const Names& { return StressTest::stress_options().names(); }, false},
    {"benchio", "[options]", "the I/O performance analysis", []() -> const Names& { return benchio_options().names(); },
     false},
    {"digitviewer", "", "looks into digit files", nullptr, false},
    {"validate", "", "proves validation files", nullptr, false},
    {"slave", "version [options]", "lets another program control this one",
     []() -> const Names& { return slave_options().names(); }, false},
};

struct OptionHelp {
    std::string_view action; // empty: of every action that has the option
    std::string_view key;
    std::string_view value;
    std::string_view text;
};

/// Options of one action stand before those of every action.
constexpr OptionHelp options[] = {
    {"global", "pause", ":N", "-2 never waits, -1 pauses after a failure (the default on a console), 1 always"},
    {"global", "priority", ":N", "-2 idle, -1 below normal (default), 0 normal, 1 above normal, 2 high, 3 real-time"},
    {"global", "colors", ":N", "0 for none"},
    {"global", "PII", ":N", "1: personal identifiers may appear in reports"},
    {"global", "height", ":N", "nothing here: terminals size themselves"},
    {"global", "skip-warnings", "", "doesn't stop at the processor warning"},
    {"custom", "-algorithm", ":key", "the algorithm; \"zorvane help custom\" lists them"},
    {"custom", "-dec", ":N", "decimal digits, as in 1000000, 1,000,000, 25m, 10b"},
    {"custom", "-hex", ":N", "hexadecimal digits; 0 for none (default: as many as the decimal ones carry)"},
    {"custom", "-C", ":N", "0 text, -1 one compressed file, N > 0 compressed files of N digits"},
    {"custom", "-compress", ":N", "the same as -C"},
    {"custom", "-verify", ":N", "0: no proof of the conversion and the files"},
    {"custom", "-mode", ":word", "ram or swap"},
    {"stress", "-M", ":size", "memory in all, as in 768MB or 2.5GB"},
    {"stress", "-D", ":N", "seconds for each test"},
    {"stress", "-TL", ":N", "seconds in all; 0 is no limit"},
    {"slave", "-port", ":N", "TCP port"},
    {"slave", "-ctype", ":word", "acfg or json: the form of the messages"},
    {"slave", "-allowremote", ":N", "1: connections from other machines"},
    {"slave", "-printtraffic", ":N", "1: prints all messages"},
    {"", "-o", " path", "the folder of the digit files"},
    {"", "-od", ":N", "0: no digit files"},
    {"", "-MA", ":name", "memory allocator"},
    {"", "-PF", ":name", "parallel framework"},
    {"", "-TD", ":N", "task decomposition: into how many parts work is cut"},
    {"", "-M", ":size", "working memory (swap mode), as in 768MB or 2.5GB"},
    {"", "-minIO", ":size", "bytes per seek (swap mode)"},
    {"", "-swap", ":array paths...", "disks (swap mode): raid0 or raid3, and their paths"},
};

constexpr std::size_t label_width = 32;

void print_row(std::string_view label, std::string_view text) {
    const std::string row = "    " + std::string(label);
    const bool fits = zvp::column_count(row) < label_width;
    if (!fits) print_line(row);
    print_line(zvp::fit_left(fits ? row : "", label_width) + std::string(text));
}

/// Words in as few lines as they need.
void print_words(std::string_view label, const Names& words) {
    constexpr std::size_t width = 100;
    std::string text;
    bool first = true;
    for (const std::string& word : words) {
        if (label_width + text.size() + word.size() + 1 > width) {
            print_row(first ? label : "", text);
            first = false;
            text.clear();
        }
        text += (text.empty() ? "" : " ") + word;
    }
    if (!text.empty()) print_row(first ? label : "", text);
}

/// The rows of a table: those that have a text, and the words of the others. Nothing of a table can be left out.
void print_options(std::string_view action, const Names& names) {
    Names words;
    for (const std::string& name : names) {
        const auto row = std::find_if(std::begin(options), std::end(options), [&](const OptionHelp& option) {
            return option.key == name && (option.action.empty() || option.action == action);
        });
        if (row == std::end(options)) {
            if (name != "C17") words.push_back(name); // known, so that it can be refused
        } else {
            print_row(std::string(row->key) + std::string(row->value), row->text);
        }
    }
    print_words(action == "bench" ? "sizes:" : "tests:", words);
}

void print_constants() {
    print_line("\nConstants and their algorithms, the first one is the default:\n");
    for (const zvp::CatalogRow& row : zvp::catalog_rows()) {
        const std::unique_ptr<zvp::Constant> constant = zvp::make_constant(zvp::constant_id(row.key));
        const std::string_view argument = row.key == "sqrt" || row.key == "log" ? ":n"
                                          : row.key == "brent"                  ? ":k"
                                          : row.key == "custom"                 ? ":path"
                                                                                : "";
        print_words(std::string(row.key) + std::string(argument) + (constant->is_built() ? "" : " (not yet)"),
                    constant->algorithm_keys());
    }
}

void print_action(const ActionHelp& action) {
    print_line("Usage:  zorvane [global options] " + std::string(action.name) + (action.form.empty() ? "" : " ")
               + std::string(action.form));
    print_line("\n    " + std::string(action.text));
    if (!action.built) print_line("    " + zvp::unbuilt_text("This action"));
    if (action.options) {
        print_line("\nOptions:\n");
        print_options(action.name, action.options());
    }
    if (action.options && action.name != "stress" && action.name != "slave") {
        print_line();
        print_words("-PF:", zvp::framework_registry().names());
        print_words("-MA:", zvp::allocator_registry().names());
    }
    if (action.name == "custom") print_constants();
}

void print_global_options() {
    print_line("\nGlobal options, before the action:\n");
    print_options("global", global_options().names());
}

void print_help() {
    print_line("zorvane v" + zvp::version_text() + ": digits of mathematical constants");
    print_line("\nUsage:  zorvane [global options] [action] [options]\n");
    print_line("Without an action the main menu opens. Examples:\n");
    print_row("zorvane custom pi -dec:1m", "Pi to a million digits, in files of this folder");
    print_row("zorvane custom sqrt:2 -dec:25m -hex:0 -o /mnt/disk1", "sqrt(2) in decimal digits, elsewhere");
    print_row("zorvane custom", "the menu of computations, which saves configurations");
    print_row("zorvane pause:-2 config myrun", "a saved one, from a script");
    print_row("zorvane help custom", "all about one action");
    print_line("\nActions:\n");
    for (const ActionHelp& action : actions)
        print_row(std::string(action.name) + " " + std::string(action.form),
                  std::string(action.text) + (action.built ? "" : " (not yet)"));
    print_global_options();
    for (const ActionHelp& action : actions) {
        if (!action.options) continue;
        print_line("\nOptions of " + std::string(action.name) + ":\n");
        print_options(action.name, action.options());
    }
    print_line("\nThe exit code is 0 for a finished action, 1 for a failure, 130 after Ctrl-C.");
}

void print_version() {
    print_line("zorvane v" + zvp::version_text());
    zvp::print_tuning();
    for (const auto& [name, value] : zvp::compilation_options()) zvp::print_labelm_line(24, name + ":", value);
}

bool asks_for_help(std::string_view word) { return word == "--help" || word == "-h"; }

void help_for(const std::string& word) {
    const auto* const found = std::find_if(std::begin(actions), std::end(actions),
                                           [&](const ActionHelp& action) { return action.name == word; });
    if (found == std::end(actions)) reject_action(word);
    print_action(*found);
}

} // namespace

bool answer_help(CommandLine::CommandLine& line) {
    if (line.at_end()) return false;
    CommandLine::CommandLine ahead = line;
    const std::string word = ahead.take_parameter();
    if (word == "--version") {
        print_version();
    } else if (asks_for_help(word) || word == "help") {
        ahead.at_end() ? print_help() : help_for(ahead.parameter());
    } else if (action_table().find(word) && !ahead.at_end() && asks_for_help(ahead.parameter())) {
        help_for(word);
    } else {
        return false;
    }
    return true;
}

void reject_action(const std::string& word) {
    print_line("Invalid Parameter: " + word, 'R');
    zvp::set_color('w');
    const std::string_view key = std::string_view(word).substr(0, word.find(':'));
    const Names constants = zvp::constant_names();
    std::string hint;
    if (std::find(constants.begin(), constants.end(), key) != constants.end()) {
        hint = "\nDid you mean \"custom " + word + "\"?";
    } else {
        Names known = action_table().names();
        known.insert(known.end(), global_options().names().begin(), global_options().names().end());
        hint = CommandLine::nearest_word_hint(key, known);
    }
    if (!hint.empty()) print_line(hint.substr(1));
    zvp::fatal_stop();
}

} // namespace zorvane
