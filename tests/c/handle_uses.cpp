#include <tests/c/handle_uses.h>

namespace trv::testing {
namespace {

// Of a function that creates an object: releases the object.
int32_t released(LiveObjects& live, int32_t status) {
    if (status == TRVFILES_SUCCESS) trvfiles_release(live.created, 0);
    return status;
}

}  // namespace

LiveObjects::LiveObjects() {
    assembly.add(0, 0, "child");
    trvfiles_assembly_components(assembly, components.place(), 0);
    trvfiles_assembly_flatten(assembly, nullptr, placements.place(), 0);
    trvfiles_messages_set_entry(messages, "section", "A = 1", 0);
    trvfiles_expand("", 0, texts, 0);
    rootAlone.count = 1;
    rootAlone.parent = &noParent;
}

trvfiles_handle LiveObjects::of(HandleKind kind) const {
    const trvfiles_handle handles[] = {0,        fault,      texts,      context,
                                       assembly, components, placements, messages};
    return handles[static_cast<std::size_t>(kind)];
}

std::vector<HandleUse> handleUses() {
    return {
        {"trvfiles_live_handles", HandleKind::none,
         [](LiveObjects& live, trvfiles_handle, trvfiles_fault f) {
             return trvfiles_live_handles(&live.count, f);
         }},
        {"trvfiles_fault_get", HandleKind::fault,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault) {
             return trvfiles_fault_get(h, &live.faultValues);
         },
         false},
        {"trvfiles_fault_get_note", HandleKind::fault,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault) {
             return trvfiles_fault_get_note(h, 0, &live.note);
         },
         false},
        {"trvfiles_texts_create", HandleKind::none,
         [](LiveObjects& live, trvfiles_handle, trvfiles_fault f) {
             return released(live, trvfiles_texts_create(&live.created, f));
         }},
        {"trvfiles_texts_count", HandleKind::texts,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_texts_count(h, &live.count, f);
         }},
        {"trvfiles_texts_get", HandleKind::texts,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_texts_get(h, 0, &live.text, nullptr, f);
         }},
        {"trvfiles_absolute_path", HandleKind::texts,
         [](LiveObjects&, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_absolute_path("", "name", h, f);
         }},
        {"trvfiles_axis_read", HandleKind::none,
         [](LiveObjects& live, trvfiles_handle, trvfiles_fault f) {
             return trvfiles_axis_read("missing", &live.axis, f);
         }},
        {"trvfiles_axis_read_memory", HandleKind::none,
         [](LiveObjects& live, trvfiles_handle, trvfiles_fault f) {
             return trvfiles_axis_read_memory("", 0, &live.axis, f);
         }},
        {"trvfiles_axis_write", HandleKind::none,
         [](LiveObjects& live, trvfiles_handle, trvfiles_fault f) {
             return trvfiles_axis_write("", &live.axis, f);
         }},
        {"trvfiles_axis_write_memory", HandleKind::texts,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_axis_write_memory(&live.axis, h, f);
         }},
        {"trvfiles_context_create", HandleKind::none,
         [](LiveObjects& live, trvfiles_handle, trvfiles_fault f) {
             return released(live, trvfiles_context_create(&live.created, f));
         }},
        {"trvfiles_context_copy", HandleKind::context,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return released(live, trvfiles_context_copy(h, &live.created, f));
         }},
        {"trvfiles_context_read", HandleKind::context,
         [](LiveObjects&, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_context_read(h, "missing", f);
         }},
        {"trvfiles_context_read_memory", HandleKind::context,
         [](LiveObjects&, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_context_read_memory(h, "", 0, f);
         }},
        {"trvfiles_context_write", HandleKind::context,
         [](LiveObjects&, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_context_write(h, "", f);
         }},
        {"trvfiles_context_write_memory", HandleKind::context,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_context_write_memory(h, live.texts, f);
         }},
        {"trvfiles_context_write_memory", HandleKind::texts,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_context_write_memory(live.context, h, f);
         }},
        {"trvfiles_context_get_text", HandleKind::context,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_context_get_text(h, 0, live.texts, f);
         }},
        {"trvfiles_context_get_text", HandleKind::texts,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_context_get_text(live.context, 0, h, f);
         }},
        {"trvfiles_context_set_text", HandleKind::context,
         [](LiveObjects&, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_context_set_text(h, 0, "text", f);
         }},
        {"trvfiles_context_get_numbers", HandleKind::context,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_context_get_numbers(h, &live.numbers, f);
         }},
        {"trvfiles_context_set_numbers", HandleKind::context,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_context_set_numbers(h, &live.numbers, f);
         }},
        {"trvfiles_context_clear", HandleKind::context,
         [](LiveObjects&, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_context_clear(h, f);
         }},
        {"trvfiles_context_is_null", HandleKind::context,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_context_is_null(h, &live.flag, f);
         }},
        {"trvfiles_catalogue_directory", HandleKind::texts,
         [](LiveObjects&, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_catalogue_directory(h, f);
         }},
        {"trvfiles_catalogue_list", HandleKind::texts,
         [](LiveObjects&, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_catalogue_list("missing", h, f);
         }},
        {"trvfiles_catalogue_choose_default", HandleKind::none,
         [](LiveObjects& live, trvfiles_handle, trvfiles_fault f) {
             return trvfiles_catalogue_choose_default(nullptr, 0, &live.count, &live.flag, f);
         }},
        {"trvfiles_catalogue_create_default", HandleKind::texts,
         [](LiveObjects&, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_catalogue_create_default("missing", 1, h, f);
         }},
        {"trvfiles_catalogue_create", HandleKind::texts,
         [](LiveObjects&, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_catalogue_create("missing", "m", "", "", h, f);
         }},
        {"trvfiles_assembly_create", HandleKind::none,
         [](LiveObjects& live, trvfiles_handle, trvfiles_fault f) {
             return released(live, trvfiles_assembly_create(&live.created, f));
         }},
        {"trvfiles_assembly_copy", HandleKind::assembly,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return released(live, trvfiles_assembly_copy(h, &live.created, f));
         }},
        {"trvfiles_assembly_read", HandleKind::assembly,
         [](LiveObjects&, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_assembly_read(h, "missing", f);
         }},
        {"trvfiles_assembly_read_memory", HandleKind::assembly,
         [](LiveObjects&, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_assembly_read_memory(h, "", 0, f);
         }},
        {"trvfiles_assembly_write", HandleKind::assembly,
         [](LiveObjects&, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_assembly_write(h, "", f);
         }},
        {"trvfiles_assembly_write_memory", HandleKind::assembly,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_assembly_write_memory(h, live.texts, f);
         }},
        {"trvfiles_assembly_write_memory", HandleKind::texts,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_assembly_write_memory(live.assembly, h, f);
         }},
        {"trvfiles_assembly_get_dimension", HandleKind::assembly,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_assembly_get_dimension(h, live.vector, f);
         }},
        {"trvfiles_assembly_set_dimension", HandleKind::assembly,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_assembly_set_dimension(h, live.vector, f);
         }},
        {"trvfiles_assembly_file_count", HandleKind::assembly,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_assembly_file_count(h, &live.count, f);
         }},
        {"trvfiles_assembly_equal", HandleKind::assembly,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_assembly_equal(h, live.assembly, &live.flag, f);
         }},
        {"trvfiles_assembly_equal", HandleKind::assembly,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_assembly_equal(live.assembly, h, &live.flag, f);
         }},
        {"trvfiles_assembly_flatten", HandleKind::assembly,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return released(live, trvfiles_assembly_flatten(h, nullptr, &live.created, f));
         }},
        {"trvfiles_placements_get", HandleKind::placements,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_placements_get(h, &live.placementTable, f);
         }},
        {"trvfiles_component_count", HandleKind::assembly,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_component_count(h, &live.count, f);
         }},
        {"trvfiles_component_get", HandleKind::assembly,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_component_get(h, 0, &live.component, f);
         }},
        {"trvfiles_component_get_text", HandleKind::assembly,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_component_get_text(h, 0, 0, live.texts, f);
         }},
        {"trvfiles_component_get_text", HandleKind::texts,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_component_get_text(live.assembly, 0, 0, h, f);
         }},
        {"trvfiles_component_set_text", HandleKind::assembly,
         [](LiveObjects&, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_component_set_text(h, 0, 0, "text", f);
         }},
        {"trvfiles_component_set_enabled", HandleKind::assembly,
         [](LiveObjects&, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_component_set_enabled(h, 0, 1, f);
         }},
        {"trvfiles_component_set_placement", HandleKind::assembly,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_component_set_placement(h, 0, live.vector, nullptr, f);
         }},
        {"trvfiles_component_add", HandleKind::assembly,
         [](LiveObjects&, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_component_add(h, 0, 0, 0, 0, nullptr, f);
         }},
        {"trvfiles_component_add", HandleKind::assembly,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_component_add(live.assembly, 0, 0, h == 0 ? 1 : h, 0, nullptr, f);
         }},
        {"trvfiles_component_remove", HandleKind::assembly,
         [](LiveObjects&, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_component_remove(h, 1, f);
         }},
        {"trvfiles_component_compare", HandleKind::assembly,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_component_compare(h, 0, live.assembly, 0, &live.bits, f);
         }},
        {"trvfiles_component_compare", HandleKind::assembly,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_component_compare(live.assembly, 0, h, 0, &live.bits, f);
         }},
        {"trvfiles_assembly_components", HandleKind::assembly,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return released(live, trvfiles_assembly_components(h, &live.created, f));
         }},
        {"trvfiles_components_get", HandleKind::components,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_components_get(h, &live.table, f);
         }},
        {"trvfiles_assembly_set_components", HandleKind::assembly,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_assembly_set_components(h, &live.rootAlone, f);
         }},
        {"trvfiles_install_root", HandleKind::texts,
         [](LiveObjects&, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_install_root(0, h, f);
         }},
        {"trvfiles_process_variable_set", HandleKind::none,
         [](LiveObjects&, trvfiles_handle, trvfiles_fault f) {
             return trvfiles_process_variable_set("TRV_TEST_OWN", "", f);
         }},
        {"trvfiles_variable_get", HandleKind::texts,
         [](LiveObjects&, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_variable_get(0, "NAME", h, f);
         }},
        {"trvfiles_variable_definitions", HandleKind::texts,
         [](LiveObjects&, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_variable_definitions(0, "NAME", h, f);
         }},
        {"trvfiles_variable_list", HandleKind::texts,
         [](LiveObjects&, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_variable_list(h, f);
         }},
        {"trvfiles_expand", HandleKind::texts,
         [](LiveObjects&, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_expand("text", 0, h, f);
         }},
        {"trvfiles_search", HandleKind::texts,
         [](LiveObjects&, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_search(nullptr, "missing", h, f);
         }},
        {"trvfiles_messages_create", HandleKind::none,
         [](LiveObjects& live, trvfiles_handle, trvfiles_fault f) {
             return released(live, trvfiles_messages_create(&live.created, f));
         }},
        {"trvfiles_messages_open", HandleKind::none,
         [](LiveObjects& live, trvfiles_handle, trvfiles_fault f) {
             return released(live, trvfiles_messages_open(0, &live.created, f));
         }},
        {"trvfiles_messages_load", HandleKind::messages,
         [](LiveObjects&, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_messages_load(h, "missing", f);
         }},
        {"trvfiles_messages_load_into", HandleKind::none,
         [](LiveObjects&, trvfiles_handle, trvfiles_fault f) {
             return trvfiles_messages_load_into(1, "", "", f);
         }},
        {"trvfiles_messages_sections", HandleKind::messages,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_messages_sections(h, live.texts, f);
         }},
        {"trvfiles_messages_sections", HandleKind::texts,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_messages_sections(live.messages, h, f);
         }},
        {"trvfiles_messages_list", HandleKind::messages,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_messages_list(h, "section", live.texts, f);
         }},
        {"trvfiles_messages_list", HandleKind::texts,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_messages_list(live.messages, "section", h, f);
         }},
        {"trvfiles_messages_find", HandleKind::messages,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_messages_find(h, "section", "A", 0, live.texts, f);
         }},
        {"trvfiles_messages_find", HandleKind::texts,
         [](LiveObjects& live, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_messages_find(live.messages, "section", "A", 0, h, f);
         }},
        {"trvfiles_messages_set", HandleKind::messages,
         [](LiveObjects&, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_messages_set(h, "section", 1, "text", f);
         }},
        {"trvfiles_messages_set_entry", HandleKind::messages,
         [](LiveObjects&, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_messages_set_entry(h, "section", "B = 1", f);
         }},
        {"trvfiles_messages_remove_entry", HandleKind::messages,
         [](LiveObjects&, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_messages_remove_entry(h, "section", "B", f);
         }},
        {"trvfiles_messages_save", HandleKind::messages,
         [](LiveObjects&, trvfiles_handle h, trvfiles_fault f) {
             return trvfiles_messages_save(h, "", 0, f);
         }},
        {"trvfiles_channel_set", HandleKind::none,
         [](LiveObjects&, trvfiles_handle, trvfiles_fault f) {
             return trvfiles_channel_set(0, nullptr, nullptr, f);
         }},
        {"trvfiles_channel_set_output", HandleKind::none,
         [](LiveObjects&, trvfiles_handle, trvfiles_fault f) {
             return trvfiles_channel_set_output(0, 0, f);
         }},

    };
}

}  // namespace trv::testing
