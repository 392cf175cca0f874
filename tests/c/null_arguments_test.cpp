// Pointers and structures that a function refuses, for every function that takes one.

#include <tests/c/handle_uses.h>

#include <gtest/gtest.h>

namespace trv::testing {
namespace {

struct Refused {
    const char* what;
    std::function<int32_t(LiveObjects& live)> call;
};

std::vector<Refused> nullPointers() {
    return {
        {"live_handles", [](LiveObjects&) { return trvfiles_live_handles(nullptr, 0); }},
        {"fault_create", [](LiveObjects&) { return trvfiles_fault_create(nullptr); }},
        {"fault_get", [](LiveObjects& o) { return trvfiles_fault_get(o.fault, nullptr); }},
        {"texts_create", [](LiveObjects&) { return trvfiles_texts_create(nullptr, 0); }},
        {"texts_count", [](LiveObjects& o) { return trvfiles_texts_count(o.texts, nullptr, 0); }},
        {"texts_get",
         [](LiveObjects& o) { return trvfiles_texts_get(o.texts, 0, nullptr, nullptr, 0); }},
        {"absolute_path, directory",
         [](LiveObjects& o) { return trvfiles_absolute_path(nullptr, "", o.texts, 0); }},
        {"absolute_path, name",
         [](LiveObjects& o) { return trvfiles_absolute_path("", nullptr, o.texts, 0); }},
        {"axis_read, path", [](LiveObjects& o) { return trvfiles_axis_read(nullptr, &o.axis, 0); }},
        {"axis_read", [](LiveObjects&) { return trvfiles_axis_read("", nullptr, 0); }},
        {"axis_read_memory, bytes",
         [](LiveObjects& o) { return trvfiles_axis_read_memory(nullptr, 1, &o.axis, 0); }},
        {"axis_read_memory",
         [](LiveObjects&) { return trvfiles_axis_read_memory("", 0, nullptr, 0); }},
        {"axis_write, path",
         [](LiveObjects& o) { return trvfiles_axis_write(nullptr, &o.axis, 0); }},
        {"axis_write", [](LiveObjects&) { return trvfiles_axis_write("", nullptr, 0); }},
        {"axis_write_memory",
         [](LiveObjects& o) { return trvfiles_axis_write_memory(nullptr, o.texts, 0); }},
        {"context_create", [](LiveObjects&) { return trvfiles_context_create(nullptr, 0); }},
        {"context_copy",
         [](LiveObjects& o) { return trvfiles_context_copy(o.context, nullptr, 0); }},
        {"context_read",
         [](LiveObjects& o) { return trvfiles_context_read(o.context, nullptr, 0); }},
        {"context_read_memory",
         [](LiveObjects& o) { return trvfiles_context_read_memory(o.context, nullptr, 1, 0); }},
        {"context_write",
         [](LiveObjects& o) { return trvfiles_context_write(o.context, nullptr, 0); }},
        {"context_set_text",
         [](LiveObjects& o) { return trvfiles_context_set_text(o.context, 0, nullptr, 0); }},
        {"context_get_numbers",
         [](LiveObjects& o) { return trvfiles_context_get_numbers(o.context, nullptr, 0); }},
        {"context_set_numbers",
         [](LiveObjects& o) { return trvfiles_context_set_numbers(o.context, nullptr, 0); }},
        {"context_is_null",
         [](LiveObjects& o) { return trvfiles_context_is_null(o.context, nullptr, 0); }},
        {"catalogue_list",
         [](LiveObjects& o) { return trvfiles_catalogue_list(nullptr, o.texts, 0); }},
        {"catalogue_choose_default, names",
         [](LiveObjects& o) {
             return trvfiles_catalogue_choose_default(nullptr, 1, &o.count, &o.flag, 0);
         }},
        {"catalogue_choose_default, index",
         [](LiveObjects& o) {
             return trvfiles_catalogue_choose_default(nullptr, 0, nullptr, &o.flag, 0);
         }},
        {"catalogue_choose_default, position",
         [](LiveObjects& o) {
             return trvfiles_catalogue_choose_default(nullptr, 0, &o.count, nullptr, 0);
         }},
        {"catalogue_create_default",
         [](LiveObjects& o) { return trvfiles_catalogue_create_default(nullptr, 1, o.texts, 0); }},
        {"catalogue_create, directory",
         [](LiveObjects& o) { return trvfiles_catalogue_create(nullptr, "", "", "", o.texts, 0); }},
        {"catalogue_create, machine",
         [](LiveObjects& o) { return trvfiles_catalogue_create("", nullptr, "", "", o.texts, 0); }},
        {"catalogue_create, axis",
         [](LiveObjects& o) { return trvfiles_catalogue_create("", "", nullptr, "", o.texts, 0); }},
        {"catalogue_create, context",
         [](LiveObjects& o) { return trvfiles_catalogue_create("", "", "", nullptr, o.texts, 0); }},
        {"assembly_create", [](LiveObjects&) { return trvfiles_assembly_create(nullptr, 0); }},
        {"assembly_copy",
         [](LiveObjects& o) { return trvfiles_assembly_copy(o.assembly, nullptr, 0); }},
        {"assembly_read",
         [](LiveObjects& o) { return trvfiles_assembly_read(o.assembly, nullptr, 0); }},
        {"assembly_read_memory",
         [](LiveObjects& o) { return trvfiles_assembly_read_memory(o.assembly, nullptr, 1, 0); }},
        {"assembly_write",
         [](LiveObjects& o) { return trvfiles_assembly_write(o.assembly, nullptr, 0); }},
        {"assembly_get_dimension",
         [](LiveObjects& o) { return trvfiles_assembly_get_dimension(o.assembly, nullptr, 0); }},
        {"assembly_set_dimension",
         [](LiveObjects& o) { return trvfiles_assembly_set_dimension(o.assembly, nullptr, 0); }},
        {"assembly_file_count",
         [](LiveObjects& o) { return trvfiles_assembly_file_count(o.assembly, nullptr, 0); }},
        {"assembly_equal",
         [](LiveObjects& o) {
             return trvfiles_assembly_equal(o.assembly, o.assembly, nullptr, 0);
         }},
        {"assembly_flatten",
         [](LiveObjects& o) { return trvfiles_assembly_flatten(o.assembly, nullptr, nullptr, 0); }},
        {"placements_get",
         [](LiveObjects& o) { return trvfiles_placements_get(o.placements, nullptr, 0); }},
        {"component_count",
         [](LiveObjects& o) { return trvfiles_component_count(o.assembly, nullptr, 0); }},
        {"component_get",
         [](LiveObjects& o) { return trvfiles_component_get(o.assembly, 0, nullptr, 0); }},
        {"component_set_text",
         [](LiveObjects& o) { return trvfiles_component_set_text(o.assembly, 0, 0, nullptr, 0); }},
        {"component_compare",
         [](LiveObjects& o) {
             return trvfiles_component_compare(o.assembly, 0, o.assembly, 0, nullptr, 0);
         }},
        {"assembly_components",
         [](LiveObjects& o) { return trvfiles_assembly_components(o.assembly, nullptr, 0); }},
        {"components_get",
         [](LiveObjects& o) { return trvfiles_components_get(o.components, nullptr, 0); }},
        {"assembly_set_components",
         [](LiveObjects& o) { return trvfiles_assembly_set_components(o.assembly, nullptr, 0); }},
        {"process_variable_set, name",
         [](LiveObjects&) { return trvfiles_process_variable_set(nullptr, "x", 0); }},
        {"process_variable_set, value",
         [](LiveObjects&) { return trvfiles_process_variable_set("OWN", nullptr, 0); }},
        {"variable_get",
         [](LiveObjects& o) { return trvfiles_variable_get(0, nullptr, o.texts, 0); }},
        {"variable_definitions",
         [](LiveObjects& o) { return trvfiles_variable_definitions(0, nullptr, o.texts, 0); }},
        {"expand", [](LiveObjects& o) { return trvfiles_expand(nullptr, 0, o.texts, 0); }},
        {"search", [](LiveObjects& o) { return trvfiles_search("", nullptr, o.texts, 0); }},
        {"messages_create", [](LiveObjects&) { return trvfiles_messages_create(nullptr, 0); }},
        {"messages_open", [](LiveObjects&) { return trvfiles_messages_open(0, nullptr, 0); }},
        {"messages_load",
         [](LiveObjects& o) { return trvfiles_messages_load(o.messages, nullptr, 0); }},
        {"messages_load_into, name",
         [](LiveObjects&) { return trvfiles_messages_load_into(1, nullptr, "", 0); }},
        {"messages_load_into, directories",
         [](LiveObjects&) { return trvfiles_messages_load_into(1, "", nullptr, 0); }},
        {"messages_list",
         [](LiveObjects& o) { return trvfiles_messages_list(o.messages, nullptr, o.texts, 0); }},
        {"messages_find, section",
         [](LiveObjects& o) {
             return trvfiles_messages_find(o.messages, nullptr, "A", 0, o.texts, 0);
         }},
        {"messages_find, name",
         [](LiveObjects& o) {
             return trvfiles_messages_find(o.messages, "section", nullptr, 0, o.texts, 0);
         }},
        {"messages_set, section",
         [](LiveObjects& o) { return trvfiles_messages_set(o.messages, nullptr, 0, "", 0); }},
        {"messages_set, text",
         [](LiveObjects& o) {
             return trvfiles_messages_set(o.messages, "section", 0, nullptr, 0);
         }},
        {"messages_set_entry, section",
         [](LiveObjects& o) {
             return trvfiles_messages_set_entry(o.messages, nullptr, "A = 1", 0);
         }},
        {"messages_set_entry, entry",
         [](LiveObjects& o) {
             return trvfiles_messages_set_entry(o.messages, "section", nullptr, 0);
         }},
        {"messages_remove_entry, section",
         [](LiveObjects& o) {
             return trvfiles_messages_remove_entry(o.messages, nullptr, "A", 0);
         }},
        {"messages_remove_entry, name",
         [](LiveObjects& o) {
             return trvfiles_messages_remove_entry(o.messages, "section", nullptr, 0);
         }},
        {"messages_save",
         [](LiveObjects& o) { return trvfiles_messages_save(o.messages, nullptr, 0, 0); }},
    };
}

TEST(NullPointers, AreRefusedByEveryFunction) {
    LiveObjects live;
    for (const Refused& refused : nullPointers())
        EXPECT_EQ(refused.call(live), TRVFILES_BAD_ARGUMENT) << refused.what;
}

// Each structure of the caller's, with its size and a byte more or less.
template <class Struct, class Call>
void expectSizesAreChecked(Call call) {
    Struct values = {};
    for (const std::size_t size : {std::size_t{0}, sizeof values - 1, SIZE_MAX}) {
        values.size = size;
        EXPECT_EQ(call(&values), TRVFILES_BAD_ARGUMENT) << size;
    }
    values.size = sizeof values;
    EXPECT_EQ(call(&values), TRVFILES_SUCCESS);
}

TEST(Structures, AreRefusedIfTheirSizeIsNotSet) {
    LiveObjects live;
    trvfiles_context_numbers numbers = {};
    expectSizesAreChecked<trvfiles_fault_values>(
        [&](auto* values) { return trvfiles_fault_get(live.fault, values); });
    expectSizesAreChecked<trvfiles_axis>(
        [&](auto* values) { return trvfiles_axis_write_memory(values, live.texts, 0); });
    expectSizesAreChecked<trvfiles_context_numbers>(
        [&](auto* values) { return trvfiles_context_get_numbers(live.context, values, 0); });
    expectSizesAreChecked<trvfiles_context_numbers>(
        [&](auto* values) { return trvfiles_context_set_numbers(live.context, values, 0); });
    expectSizesAreChecked<trvfiles_component>(
        [&](auto* values) { return trvfiles_component_get(live.assembly, 0, values, 0); });
    expectSizesAreChecked<trvfiles_placement_table>(
        [&](auto* values) { return trvfiles_placements_get(live.placements, values, 0); });
    expectSizesAreChecked<trvfiles_component_table>(
        [&](auto* values) { return trvfiles_components_get(live.components, values, 0); });
    EXPECT_EQ(trvfiles_context_get_numbers(live.context, &numbers, live.fault),
              TRVFILES_BAD_ARGUMENT);
    EXPECT_EQ(live.fault.reason(), "the size of a structure is not set");
}

// A host of a later version: what this version does not know becomes 0.
TEST(Structures, MayBeLargerThanTheirFirstVersion) {
    struct Later {
        trvfiles_component known;
        std::uint64_t added;
    };
    const LiveObjects live;
    Later later = {};
    later.known.size = sizeof later;
    later.added = 77;
    EXPECT_EQ(trvfiles_component_get(live.assembly, 0, &later.known, 0), TRVFILES_SUCCESS);
    EXPECT_EQ(later.known.size, sizeof later);
    EXPECT_EQ(later.known.subtree_size, 2U);
    EXPECT_EQ(later.added, 0U);
}

}  // namespace
}  // namespace trv::testing
