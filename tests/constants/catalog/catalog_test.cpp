#include "constants/catalog/constant_catalog.h"

#include "app/notation/parser.h"
#include "app/raised.h"
#include "multiply/contract/multiply_tables.h"
#include "support/process.h"

#include <gtest/gtest.h>

namespace {

using namespace zvp;
using test::printed_with_input;
using test::raised_by;

const std::string refused = "InvalidParametersException: ";

TEST(Catalog, ANameLeadsToAnotherConstant) {
    const std::pair<const char*, int> names[] = {
        {"sqrt", 0},    {"goldenratio", 1}, {"e", 2},          {"pi", 3},    {"log", 4},   {"apery", 5},  {"zeta3", 5},
        {"zeta(3)", 5}, {"catalan", 6},     {"lemniscate", 7}, {"gamma", 8}, {"brent", 9}, {"custom", 10}};
    for (const auto& [name, id] : names) EXPECT_EQ(constant_id(name), id) << name;
    for (std::int32_t id = 0; id < 11; ++id) {
        const std::unique_ptr<Constant> constant = make_constant(id);
        EXPECT_EQ(constant->id(), id);
        EXPECT_EQ(constant->key(), constant_key(id));
        EXPECT_EQ(constant_id(constant_key(id)), id);
        EXPECT_EQ(constant->color(), catalog_rows()[static_cast<std::size_t>(id)].color) << id;
        EXPECT_EQ(constant->algorithm, 0);
        EXPECT_EQ(constant->max_digits(), 1'000'000'000'000'050u);
    }
    for (const char* name : {"", "Zeta(3)", "Pi", "PI", "sqrt:2", "pi "})
        EXPECT_EQ(raised_by([&] { constant_id(name); }), refused + "Invalid Constant: " + name);
    for (const std::int32_t id : {-1, 11, 1000}) {
        EXPECT_EQ(make_constant(id), nullptr);
        EXPECT_EQ(constant_key(id), "sqrt");
    }
}

TEST(Catalog, AnArgumentIsTakenWrongly) {
    const std::string low = "Argument must be greater than 1.", large = "Argument is too large.";
    const struct {
        const char *name, *argument;
        std::string outcome; // the short name, or what is refused
    } cases[] = {
        {"sqrt", "2", "Sqrt(2)"},
        {"sqrt", "4294967294", "Sqrt(4294967294)"},
        {"sqrt", "4294967295", "Sqrt(4294967295)"},
        {"sqrt", "4294967296", large},
        {"sqrt", "99999999999999999999", large},
        {"sqrt", "1", low},
        {"sqrt", "0", low},
        {"sqrt", "-5", low},
        {"sqrt", "", low},
        {"sqrt", "2x", "Invalid number: 2x  (not understood: \"x\")"},
        {"sqrt", "1,000,003", "Sqrt(1000003)"},
        {"log", "", low},
        {"sqrt", "4", "4 is a perfect square."},
        {"sqrt", "65536", "65536 is a perfect square."},
        {"sqrt", "4294836225", "4294836225 is a perfect square."}, // 65535^2
        {"sqrt", "4294836224", "Sqrt(4294836224)"},
        {"log", "2", "Log(2)"},
        {"log", "4", "Log(4)"},
        {"log", "32767", "Log(32767)"},
        {"log", "32768", "32768 is out of range."},
        {"log", "1", low},
        {"brent", "", "Argument must be greater than 0."},
        {"brent", "0", "Argument must be greater than 0."},
        {"brent", "64", "64 is out of range."},
        {"brent", "4294967296", large},
        {"custom", "", "No formula file specified."},
        {"custom", "no such file", "File not found."},
        {"pi", "ignored", "Pi"},
    };
    for (const auto& c : cases) {
        std::string outcome;
        const std::string raised = raised_by([&] { outcome = make_constant(c.name, c.argument)->short_name(); });
        EXPECT_EQ(raised == "nothing" ? outcome : raised, raised == "nothing" ? c.outcome : refused + c.outcome)
            << c.name << ":" << c.argument;
    }
    EXPECT_EQ(make_constant("sqrt", std::nullopt)->short_name(), "Sqrt(2)");
    EXPECT_NE(raised_by([] { make_constant("brent", std::nullopt); }), "nothing");
    EXPECT_EQ(make_constant("brent", "63")->algorithm_name(), "Brent-McMillan with Refinement ( n = 2^63 )");
    EXPECT_EQ(make_constant("sqrt", "7")->spot_check_key(), "Sqrt-7");
}

TEST(Catalog, ARefusedArgumentReplacesTheOldOne) {
    const std::unique_ptr<Constant> constant = make_constant("sqrt", "5");
    EXPECT_NE(raised_by([&] { constant->set_parameters("9"); }), "nothing");
    EXPECT_NE(raised_by([&] { constant->set_algorithm("chudnovsky"); }), "nothing");
    EXPECT_EQ(constant->long_name(), "Sqrt(5)");
    EXPECT_EQ(constant->algorithm_key(), "newton");
}

TEST(Catalog, AConfigurationReadsBackAsAnotherConstant) {
    std::size_t algorithms = 0;
    for (std::int32_t id = 0; id < 10; ++id) {
        const std::unique_ptr<Constant> constant = make_constant(id);
        if (id == 9) constant->set_parameters("17");
        if (id == 0 || id == 4) constant->set_parameters("1234");
        std::string keys;
        for (const char* key : {"newton",
                                "exp(1)",
                                "exp(-1)",
                                "chudnovsky",
                                "ramanujan",
                                "chudnovsky-reduced",
                                "ramanujan-reduced",
                                "machin-primary",
                                "machin-secondary",
                                "wedeniwski",
                                "az",
                                "pilehrood-short",
                                "guillera2019",
                                "pilehrood-long",
                                "guillera2008",
                                "lupas",
                                "huvent",
                                "agm-pi",
                                "gauss",
                                "sebah",
                                "brent-refined",
                                "brent-original"}) {
            if (raised_by([&] { constant->set_algorithm(key); }) != "nothing") continue;
            ++algorithms;
            EXPECT_EQ(constant->algorithm_key(), key);
            const std::string text = constant->to_config_object().to_text();
            const std::unique_ptr<Node> read = parse_notation_text(text);
            const std::unique_ptr<Constant> copy = load_constant(read->as_object(""));
            EXPECT_EQ(copy->to_config_object().to_text(), text);
            EXPECT_EQ(copy->id(), id);
            EXPECT_EQ(copy->clone()->to_config_object().to_text(), text);
        }
    }
    EXPECT_EQ(algorithms, 1u + 1 + 2 + 4 + 2 + 2 + 6 + 3 + 2 + 2);
    const std::pair<const char*, std::string> broken[] = {
        {"{Algorithm : \"newton\"}", "KeyNotFoundException: Key not found: Constant"},
        {"{Constant : \"pi\"}", "KeyNotFoundException: Key not found: Algorithm"},
        {"{Constant : \"sqrt\" Algorithm : \"newton\"}", "KeyNotFoundException: Key not found: Argument"},
        {"{Constant : \"sqrt\" Argument : 4 Algorithm : \"newton\"}", refused + "4 is a perfect square."},
        {"{Constant : \"sqrt\" Argument : \"2\" Algorithm : \"newton\"}",
         "ParseException: Expected Integer, got String."},
        {"{Constant : \"pi\" Algorithm : \"newton\"}", refused + "Invalid Algorithm: newton"},
        {"{Constant : \"tau\" Algorithm : \"newton\"}", refused + "Invalid Constant: tau"},
    };
    for (const auto& c : broken)
        EXPECT_EQ(raised_by([&] { load_constant(parse_notation_text(c.first)->as_object("")); }), c.second) << c.first;
}

TEST(Catalog, EulersParameterIsTooSmallForTheSize) {
    const std::unique_ptr<Constant> gamma = make_constant("gamma", "");
    for (const auto& [digits, k] : {std::pair{100u, 7}, {1'000'000u, 20}, {1'000'000'000u, 30}}) {
        gamma->set_digits(digits);
        EXPECT_EQ(gamma->algorithm_name(), "Brent-McMillan with Refinement ( n = 2^" + std::to_string(k) + " )");
    }
}

TEST(Catalog, OneThatIsNotBuiltGivesAPlanOrOneThatIsDoesNot) {
    for (std::int32_t id = 0; id < 11; ++id) {
        MultiplyTables tables;
        const std::unique_ptr<ConstantPlanB> plan = make_constant(id)->make_plan(tables, 2);
        EXPECT_EQ(plan != nullptr, make_constant(id)->is_built()) << id;
        EXPECT_EQ(make_constant(id)->is_built(), id < 4) << id;
        if (!plan) continue;
        EXPECT_EQ(plan->long_algorithm_name(), make_constant(id)->algorithm_name());
        EXPECT_EQ(plan->short_algorithm_name(), make_constant(id)->short_algorithm_name());
        EXPECT_EQ(plan->w, 83u / 8 + 3);
    }
}

TEST(ConstantMenu, AChoiceIsLostOrAWrongOneKept) {
    const struct {
        const char *input, *chosen, *told;
    } cases[] = {
        {"3\n", "Pi", "  3         Pi                          = 3.141592...       13.2 / 19.9\n"},
        {"11\n99\n1\n", "Golden Ratio", "option: option: option: "},
        {"0\n1\n16\n4294967296\n10\n", "Sqrt(10)",
         "n = Argument must be greater than 1.\nn = This number is a perfect square.\n"
         "Please choose something more interesting :)\nn = Argument is too large.\nn = "},
        {"5\n3\n", "Pi", "Computing Zeta(3) - Apery's Constant isn't part of version"},
        {"10\n1\n", "Golden Ratio", "Computing Custom Formula isn't part of version"},
    };
    for (const auto& c : cases) {
        std::string chosen;
        const std::string printed = printed_with_input(c.input, [&] {
            if (const std::unique_ptr<Constant> constant = choose_constant()) chosen = constant->short_name();
        });
        EXPECT_EQ(chosen, c.chosen) << c.input;
        EXPECT_NE(printed.find(c.told), std::string::npos) << c.input << printed;
    }
}

TEST(AlgorithmMenu, ANumberChoosesAnotherAlgorithm) {
    const std::unique_ptr<Constant> pi = make_constant("pi", "");
    const std::string printed = printed_with_input("4\n2\n", [&] { pi->algorithm_menu(); });
    EXPECT_EQ(pi->algorithm_key(), "chudnovsky-reduced");
    for (const char* shown : {"Select an Algorithm:\n", "   0    Chudnovsky (1988)       (fastest)\n",
                              "   3    Ramanujan (1910)        (reduced memory)\n",
                              "    Reduced memory algorithms use alternate parameters that require less\n"
                              "    memory at the cost of decreased performance.\n",
                              "Algorithm: 4 is out of range.\nAlgorithm: "})
        EXPECT_NE(printed.find(shown), std::string::npos) << shown << printed;
}

} // namespace
