#include "app/console/console.h"
#include "app/console/prompts.h"
#include "app/console/text_width.h"
#include "constants/catalog/constant.h"

namespace zvp {

namespace {

/// A number below `end`; another one is refused.
std::uint64_t prompt_algorithm(std::uint64_t end) {
    for (;;) {
        const std::uint64_t choice = prompt_int64("Algorithm: ", 0, ~std::uint64_t{0}, 'T');
        if (choice < end) return choice;
        print_line(std::to_string(choice) + " is out of range.", 'R');
        set_color('w');
    }
}

} // namespace

void Constant::algorithm_menu() {
    print_line("\n\nSelect an Algorithm:\n", 'w');
    for (std::size_t i = 0; i < traits.algorithms.size(); ++i) {
        print(pad_left(std::to_string(i), 4) + "    ", 'w');
        print_line(traits.algorithms[i].menu_line, 'Y');
        if (i < traits.menu_notes.size()) print_line(traits.menu_notes[i], 'w');
    }
    set_color('w');
    print_line();
    if (!traits.menu_text.empty()) print_line(std::string(traits.menu_text) + "\n");
    algorithm = static_cast<std::int32_t>(prompt_algorithm(traits.algorithms.size()));
}

} // namespace zvp
