#include "parallel/memory/allocator_registry.h"
#include "parallel/memory/interleave_allocator.h"
#include "parallel/memory/mmap_allocator.h"

#include "app/notation/parser.h"
#include "app/raised.h"
#include "support/process.h"

#include <gtest/gtest.h>

namespace {

using namespace zvp;
using test::printed_with_input;

std::string compact(const Node& node) {
    std::string text;
    for (const char c : node.to_json())
        if (c != ' ' && c != '\r' && c != '\n') text += c;
    return text;
}

TEST(AllocatorConfig, ReadsBackWhatItWrites) {
    const char* const texts[] = {
        R"({"Allocator":"malloc"})",
        R"({"Allocator":"mmap","LargePages":"forced","LockedPages":"disabled"})",
        R"({"Allocator":"interleave","LockedPages":"disabled","Nodes":[0,0,7],"Hashed":"false"})",
    };
    for (const char* text : texts) {
        const auto allocator = load_allocator(parse_json_text(text)->as_object(""));
        EXPECT_EQ(compact(allocator->to_config_object()), text);
        EXPECT_EQ(compact(allocator->clone()->to_config_object()), text);
    }
    EXPECT_EQ(compact(MmapAllocator().to_config_object_full()),
              R"({"Allocator":"mmap","LargePages":{"Value":"attempt","DisplayText":"Attempt","DisplayColor":"Y"},)"
              R"("LockedPages":{"Value":"attempt","DisplayText":"Attempt","DisplayColor":"Y"}})");
}

TEST(AllocatorConfig, TellsWhatIsWrong) {
    const struct {
        const char* text;
        const char* raised;
    } cases[] = {
        {"{}", "Allocator"},
        {R"({"Allocator":"heap"})", "InvalidParametersException: Invalid Memory Allocator: heap"},
        {R"({"Allocator":"mmap","LargePages":"attempt"})", "LockedPages"},
        {R"({"Allocator":"mmap","LargePages":"on","LockedPages":"attempt"})",
         "InvalidParametersException: Invalid Mode: on"},
        {R"({"Allocator":"interleave","LockedPages":"attempt","Hashed":"true"})", "Nodes"},
        {R"({"Allocator":"interleave","LockedPages":"attempt","Nodes":[0]})", "Hashed"},
        {R"({"Allocator":"interleave","LockedPages":"attempt","Nodes":[],"Hashed":"true"})",
         "InvalidParametersException: Node list cannot be empty."},
        {R"({"Allocator":"interleave","LockedPages":"attempt","Nodes":[-1],"Hashed":"true"})",
         "InvalidParametersException: Invalid NUMA node: -1"},
    };
    for (const auto& expect : cases) {
        const std::string raised =
            test::raised_by([&] { load_allocator(parse_json_text(expect.text)->as_object("")); });
        const bool missing_key = std::string_view(expect.raised).find(' ') == std::string_view::npos;
        EXPECT_NE(raised.find(expect.raised), std::string::npos) << expect.text << ": " << raised;
        EXPECT_EQ(raised.starts_with("KeyNotFoundException"), missing_key) << expect.text << ": " << raised;
    }
}

TEST(AllocatorMenu, RowsShowAndChangeTheSettings) {
    MmapAllocator pages;
    pages.menu_select(0);
    pages.menu_select(1);
    pages.menu_select(1);
    pages.menu_select(2); // no such row
    std::uint32_t next = 0;
    EXPECT_EQ(test::printed_by([&] { next = pages.print_menu_rows(4); }),
              "   4    Large Pages:                Forced\n"
              "   5    Lock Pages in Memory:       Disabled\n");
    EXPECT_EQ(next, 6u);

    InterleaveAllocator nodes({0});
    nodes.menu_select(1);
    EXPECT_EQ(printed_with_input("0\nx\n0\n12\n-3\n\n", [&] { nodes.menu_select(0); }),
              "\n\nEnter NUMA node #'s one-by-one. Enter nothing to stop.\n"
              "    - Duplicating nodes allow for imbalanced interleaving.\n"
              "    - Non-existant nodes simply won't bind.\n"
              "Node: Node: Node: Node: Node: Node: ");
    printed_with_input("\n", [&] { nodes.menu_select(0); }); // nothing typed: the list stays
    const std::string note = topology().nodes.nodes().size() < 2
                                 ? "        (This allocator is useful only when there are multiple NUMA nodes.)\n"
                                 : "";
    EXPECT_EQ(test::printed_by([&] { next = nodes.print_menu_rows(1); }),
              note
                  + "   1    NUMA nodes:                 0, 0, 12\n"
                    "   2    Page Mapping:               Round-Robin\n"
                    "   3    Lock Pages in Memory:       Attempt\n");
    EXPECT_EQ(next, 4u);

    std::unique_ptr<MemoryAllocator> chosen;
    EXPECT_EQ(printed_with_input("3\n1\n", [&] { chosen = select_allocator(); }), "\n\nSelect a Memory Allocator:\n\n"
                                                                                  "   0    C malloc()\n"
                                                                                  "   1    mmap()\n"
                                                                                  "   2    Node Interleaving\n"
                                                                                  "\noption: option: ");
    EXPECT_EQ(chosen->key(), "mmap");
}

} // namespace
