#include "parallel/tasks/setting_rows.h"

#include "app/console/console.h"
#include "app/console/prompts.h"
#include "app/console/text_width.h"

#include <string>

namespace zvp {

void print_setting_row(std::uint32_t row, std::string_view label, std::string_view value, char color) {
    constexpr std::size_t label_width = 36;
    print_labelm_line(label_width, pad_left(std::to_string(row), 4) + std::string(label), value, color);
}

std::size_t choose_name(std::string_view title, const std::vector<std::string_view>& names) {
    print_line("\n\n" + std::string(title) + "\n", 'w');
    for (std::size_t i = 0; i < names.size(); ++i) {
        print(pad_left(std::to_string(i), 4) + "    ", 'w');
        print_line(names[i], 'G');
    }
    print_line("", 'w');
    return prompt_option(0, static_cast<std::uint32_t>(names.size() - 1));
}

} // namespace zvp
