#include "app/menus/item_menu.h"

#include "app/console/console.h"
#include "app/console/prompts.h"
#include "app/console/text_width.h"
#include "app/failure/exceptions.h"

namespace zorvane {

namespace {

void print_item(std::size_t index, std::string_view name, char color) {
    zvp::print(zvp::pad_left(std::to_string(index), 3) + "         ", 'w');
    zvp::print_line(name, color);
}

void run_all_items(const std::vector<MenuItem>& items) {
    std::size_t failed = 0;
    for (const MenuItem& item : items) {
        zvp::print_line(item.name, item.color);
        try {
            item.run();
        } catch (const zvp::Exception& failure) {
            failure.print();
            ++failed;
        } catch (const std::exception& failure) {
            zvp::StdException(failure).print();
            ++failed;
        }
    }
    zvp::print_labelc("Tests Failed", std::to_string(failed), failed == 0 ? 'G' : 'R');
    zvp::set_color('w');
    zvp::print_line();
}

} // namespace

void run_item_menu(std::string_view title, const std::vector<MenuItem>& items, bool run_all) {
    zvp::print_line(title, 'w');
    zvp::print_line();
    const std::size_t first = run_all ? 1 : 0;
    if (run_all) print_item(0, "Run All", 'G');
    for (std::size_t i = 0; i < items.size(); ++i) print_item(first + i, items[i].name, items[i].color);
    zvp::set_color('w');
    zvp::print_line();
    const std::uint32_t choice = zvp::prompt_option(0, static_cast<std::uint32_t>(first + items.size() - 1));
    zvp::print_line();
    if (choice < first) {
        run_all_items(items);
    } else {
        items[choice - first].run();
    }
}

} // namespace zorvane
