#include "constants/catalog/constant_catalog.h"

#include "app/console/console.h"
#include "app/console/prompts.h"
#include "app/console/text_width.h"
#include "app/console/unbuilt.h"
#include "app/failure/exceptions.h"
#include "constants/catalog/argument_constants.h"
#include "constants/catalog/plain_constants.h"

#include <array>
#include <map>
#include <string>

namespace zvp {

namespace {

constexpr std::array<CatalogRow, 11> rows{{
    {"sqrt", 'P', "Sqrt(n)", "", "  1.46"},
    {"goldenratio", 'P', "Golden Ratio", "1.618034...", "  1.46"},
    {"e", 'P', "e", "2.718281...", "  3.88 / 3.88"},
    {"pi", 'G', "Pi", "3.141592...", "  13.2 / 19.9"},
    {"log", 'G', "Log(n)", "", "> 35.7"},
    {"zeta3", 'G', "Zeta(3) (Apery's Constant)", "1.202056...", "  62.8 / 65.7"},
    {"catalan", 'G', "Catalan's Constant", "0.915965...", "  78.0 / 105."},
    {"lemniscate", 'G', "Lemniscate", "5.244115...", "  60.4 / 124. / 154."},
    {"gamma", 'B', "Euler-Mascheroni Constant", "0.577215...", "  383. / 574."},
    {"brent", 'B', "Euler-Mascheroni Constant (parameter override)", "", ""},
    {"custom", 'R', "Custom constant with user-defined formula.", "", ""},
}};

/// Which row begins a group, and the group's heading.
struct Group {
    std::size_t first_row;
    std::string_view heading;
};
constexpr Group groups[] = {{0, "Fast Constants:"}, {3, "Moderate Constants:"}, {8, "Slow Constants:"}, {9, "Other:"}};

void print_row(std::size_t id) {
    const CatalogRow& row = rows[id];
    print(pad_left(std::to_string(id), 3) + "         ", 'w');
    const bool named_only = row.value.empty() && row.difficulty.empty();
    if (named_only) return print_line(row.name, row.color);
    print(fit_left(row.name, 28), row.color);
    print(row.value.empty() ? "  " : "= ", 'w');
    print_line(fit_left(row.value, 16) + std::string(row.difficulty));
}

void print_catalog() {
    print_line("\n\nCompute a Constant: (in ascending order of difficulty to compute)\n", 'w');
    print_line("  #         Constant                      Value        Approximate Difficulty*\n");
    const Group* group = groups;
    for (std::size_t id = 0; id < rows.size(); ++id) {
        if (group != std::end(groups) && group->first_row == id) {
            if (id != 0) print_line();
            print_line((group++)->heading, 'w');
        }
        print_row(id);
    }
    print_line("\n*Actual numbers will vary. Radix conversion = 1.00\n", 'w');
}

} // namespace

std::span<const CatalogRow> catalog_rows() { return rows; }

namespace {

const std::map<std::string_view, std::int32_t>& ids() {
    static const std::map<std::string_view, std::int32_t> map{
        {"sqrt", 0},    {"goldenratio", 1}, {"e", 2},          {"pi", 3},    {"log", 4},   {"apery", 5},  {"zeta3", 5},
        {"zeta(3)", 5}, {"catalan", 6},     {"lemniscate", 7}, {"gamma", 8}, {"brent", 9}, {"custom", 10}};
    return map;
}

} // namespace

std::vector<std::string> constant_names() {
    std::vector<std::string> names;
    for (const auto& entry : ids()) names.emplace_back(entry.first);
    return names;
}

std::int32_t constant_id(std::string_view name) {
    const auto found = ids().find(name);
    if (found == ids().end()) throw InvalidParametersException("", "Invalid Constant: " + std::string(name));
    return found->second;
}

std::string_view constant_key(std::int32_t id) {
    const bool known = id >= 0 && static_cast<std::size_t>(id) < rows.size();
    return rows[known ? static_cast<std::size_t>(id) : 0].key;
}

std::unique_ptr<Constant> make_constant(std::int32_t id) {
    switch (id) {
    case 0: return std::make_unique<SqrtConstant>();
    case 1: return std::make_unique<GoldenRatioConstant>();
    case 2: return std::make_unique<EConstant>();
    case 3: return std::make_unique<PiConstant>();
    case 4: return std::make_unique<LogConstant>();
    case 5:
    case 6:
    case 7: return std::make_unique<PlainConstant>(id);
    case 8: return std::make_unique<GammaConstant>();
    case 9: return std::make_unique<BrentConstant>();
    case 10: return std::make_unique<CustomConstant>();
    default: return nullptr;
    }
}

std::unique_ptr<Constant> make_constant(std::string_view name, std::optional<std::string_view> argument) {
    std::unique_ptr<Constant> constant = make_constant(constant_id(name));
    if (argument || constant->needs_parameters()) constant->set_parameters(argument.value_or(""));
    return constant;
}

std::unique_ptr<Constant> load_constant(const Object& object) {
    std::unique_ptr<Constant> constant = make_constant(constant_id(object.get_string("Constant")));
    constant->load(object);
    return constant;
}

std::unique_ptr<Constant> choose_constant() {
    for (;;) {
        print_catalog();
        print_line("Enter your choice:");
        const std::uint32_t id = prompt_option(0, rows.size() - 1);
        std::unique_ptr<Constant> constant = make_constant(static_cast<std::int32_t>(id));
        if (constant->is_built()) return constant->prompt_parameters() ? std::move(constant) : nullptr;
        print_unbuilt(constant->computing_text());
    }
}

} // namespace zvp
