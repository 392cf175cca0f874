// The interface of the runtime: every function is declared with its documented signature, and the
// library exports it.

#include <tests/common/temporary_directory.h>
#include <trvfiles/environment/configuration_loader.h>
#include <trvfiles/environment/definitions.h>
#include <trvfiles/environment/message_file.h>
#include <trvfiles/environment/message_store.h>
#include <trvfiles/environment/store_writer.h>
#include <trvfiles/environment/variable_expansion.h>
#include <trvfiles/environment/variables.h>
#include <trvfiles/environment/work_zone.h>
#include <trvfiles/support/diagnostics.h>
#include <trvfiles/support/dynamic_storage.h>
#include <trvfiles/support/file_system.h>
#include <trvfiles/support/line_source.h>
#include <trvfiles/support/path_search.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <type_traits>
#include <vector>

namespace trv {
namespace {

// Compiles only if the function has the signature. Links only if the library exports the function.
template <class Signature>
void exists(Signature* function) {
    EXPECT_NE(function, nullptr);
}

TEST(PublicRuntime, HasTheMessageStore) {
    exists<message_store*()>(create_store);
    exists<void(message_store*)>(destroy_store);
    exists<int(const message_store*, const char*)>(find_section);
    exists<std::uint16_t(message_store*, const char*)>(add_section);
    exists<int(message_store*, const char*)>(find_or_add_section);
    exists<const char*(const message_store*, int)>(section_name);
    exists<int(const message_store*, int)>(message_count);
    exists<int(const message_store*)>(section_count);
    exists<const char*(const message_store*, int, int)>(get_message);
    exists<std::int32_t(message_store*, const char*)>(register_file_name);
    exists<int(message_store*, int, const char*, std::int32_t, int)>(append_message);
    exists<int(message_store*, int, int, const char*, std::int32_t, int)>(replace_message);
    exists<int(message_store*, int, int, const char*)>(set_message);
    exists<int(message_store*, int, const char*, std::int32_t, int)>(set_parameter);
    exists<int(message_store*, int, const char*)>(set_variable);
    exists<int(message_store*, int, const char*)>(remove_parameter);
    exists<const char*(const message_store*, int, const char*, bool, const text_record**)>(
        find_parameter);
    exists<int(char*, std::size_t, const message_store*, const char*)>(describe_origin);
    exists<void(message_store*)>(convert_newlines);
    exists<bool(bool)>(set_record_flag);
    exists<int(message_store*, const char*)>(store_parameters);
    exists<int(message_store*, const char*)>(store_messages);
    static_assert(sizeof(text_record) == 12);
}

TEST(PublicRuntime, HasTheLookups) {
    exists<const char*(const char*)>(get_variable);
    exists<const char*(const char*)>(get_path_variable);
    exists<std::string(const char*)>(null_value);
    exists<bool(const char*)>(is_on);
    exists<bool(const char*)>(variable_is_on);
    exists<int(char*, std::size_t, const char*, const char*)>(describe_variable_origin);
    exists<int(char*, std::size_t, const char*, const char*)>(describe_path_origin);
    exists<message_store*()>(environment_store);
    exists<message_store*()>(application_store);
    exists<message_store*()>(catalogue_store);
    exists<const char*(const char*, const char*)>(get_application_parameter);
    exists<const char*(const char*, int)>(get_catalogue_message);
    exists<const char*(const char*, const char*)>(get_catalogue_parameter);
}

TEST(PublicRuntime, HasTheExpansion) {
    static_assert(EXP_OK == 0 && EXP_NOT_FOUND == -21 && EXP_SYNTAX_ERROR == -31 &&
                  EXP_BUFFER_TOO_SMALL == -32 && EXP_NAME_TOO_LONG == -42 && EXP_UNDEFINED == -43 &&
                  EXP_INVALID_ARGUMENT == -44);
    static_assert(STRING_FORMAT_F == 0 && STRING_FORMAT_C == 1);
    exists<bool(int)>(is_expand_error);
    exists<int(const char*, std::string*)>(expand_variables);
    exists<int(const std::string&, std::string*)>(expand_variables);
    exists<int(const std::vector<std::string>&, std::string*)>(expand_variables);
    exists<int(const char*, std::string*)>(expand_path);
    exists<int(const std::string&, std::string*)>(expand_path);
    exists<int(const std::vector<std::string>&, std::string*)>(expand_path);
    exists<int(const char*, std::string*)>(expand_and_search);
    exists<int(const std::string&, std::string*)>(expand_and_search);
    exists<int(const std::vector<std::string>&, std::string*)>(expand_and_search);
    exists<int(const char*, const char*, std::string*)>(expand_and_search);
    exists<std::string(const std::string&)>(normalize_separators);
    exists<std::int64_t(std::size_t, std::uint32_t)>(expansion_space);
    exists<const char*(std::uint32_t)>(string_format_name);
    exists<int(const char*, char*, std::int32_t)>(_Expand);
    exists<int(char*, std::int32_t)>(_ExpandInPlace);
    exists<int(char*, std::int32_t)>(_ExpandText);
    using two_fields = void(const char*, std::int32_t, char*, std::int32_t, std::int32_t*);
    using one_field = void(char*, std::int32_t, std::int32_t*);
    exists<two_fields>(_ExpandFixed);
    exists<one_field>(_ExpandFixed);
    exists<two_fields>(_ExpandTextFixed);
    exists<one_field>(_ExpandTextFixed);
}

TEST(PublicRuntime, HasTheLoader) {
    exists<int(message_store*, VCL8BLineSource&, const char*, section_callback, entry_callback)>(
        load_messages);
    exists<int(message_store*, VCL8BLineSource&, const char*, context_section_callback,
               context_entry_callback, void*)>(load_messages);
    exists<message_store*(message_store*, const char*)>(load_message_file);
    exists<message_store*(message_store*, const char*, const char*)>(overload_files);
    exists<int(message_store*, const char*, const char*)>(load_config_list);
    exists<int(const char*, const char*)>(load_application_files);
    exists<int(const char*)>(load_catalogue_file);
    exists<int(int (*)(const char*, const char*, void*), void*)>(for_each_variable);
    exists<const char*()>(get_temporary_directory);
    exists<void(const char*)>(set_temporary_directory);
    exists<zone_hook(zone_hook)>(set_zone_hook);
    exists<void(context_zone_hook, void*)>(set_context_zone_hook);
    exists<int(const message_store*, int, const char*, bool, int (*)(const definition&, void*),
               void*)>(for_each_definition);
    static_assert(std::is_same_v<zone_hook, void (*)()>);
}

TEST(PublicRuntime, HasTheChannelsAndTheHeap) {
    static_assert(std::is_same_v<message_handler, void (*)(const char*)>);
    for (const auto report : {report_error, report_fatal, report_trace})
        exists<void(const char*)>(report);
    for (const auto set : {set_error_handler, set_fatal_handler, set_trace_handler})
        exists<message_handler(message_handler)>(set);
    for (const auto set : {set_error_channel, set_fatal_channel, set_trace_channel})
        exists<channel_handler(const channel_handler&)>(set);
    for (const auto set : {set_quiet_errors, set_echo_output})
        exists<int(int)>(set);
    for (const auto get : {quiet_errors, echo_output, is_verbose})
        exists<int()>(get);
    static_assert(permanent_tag == 0x75A5A5A5 && temporary_tag == 0x7C0DCAB4 &&
                  freed_tag == 0x7D0ECBB5);
    exists<void*(std::uint32_t, std::size_t)>(_Wmalloc);
    exists<void*(std::uint32_t, void*, std::size_t)>(_Wrealloc);
    exists<int(void*)>(_Wfree);
    exists<void*(std::size_t)>(allocate_permanent);
    exists<void*(void*, std::size_t)>(resize_permanent);
    exists<void*(std::size_t)>(allocate_temporary);
    exists<void*(void*, std::size_t)>(resize_temporary);
    exists<std::uint64_t(std::uint64_t)>(set_storage_maximum);
    exists<bool(std::uint64_t)>(storage_fits);
    exists<void(char*, std::size_t)>(storage_report);
    exists<storage_pool*(std::int32_t)>(pool_create);
    exists<std::int32_t(storage_pool*, std::int32_t)>(pool_reserve);
    exists<void*(const storage_pool*, std::int32_t)>(pool_address);
    exists<std::int32_t(storage_pool*, const char*)>(pool_add_string);
    exists<std::int32_t(const storage_pool*)>(pool_used);
    exists<void(storage_pool*)>(pool_trim);
    exists<void(storage_pool*)>(pool_destroy);
}

TEST(PublicRuntime, HasTheFileSystem) {
    exists<std::string(const char*)>(native_path);
    exists<int(const char*)>(fileExists);
    exists<bool(const char*)>(is_directory);
    exists<bool(const char*)>(is_directory_collapsed);
    exists<int(const char*)>(make_directory);
    exists<int(const char*)>(make_directory_collapsed);
    exists<int(const char*)>(make_path);
    exists<void(const char*, char*, std::size_t)>(collapse_separators);
    exists<int(const char*, const char*, bool)>(wildcard_match);
    exists<file_listing*(const char*)>(list_matching);
    exists<int(const file_listing*)>(listing_count);
    exists<const char*(file_listing*)>(listing_next);
    exists<void(file_listing*)>(listing_free);
    exists<const char*(char*, int)>(current_directory_name);
    exists<const char*(bool)>(install_root);
    exists<const char*(const char*)>(directory_identity);
    exists<void(const char*)>(list_begin);
    exists<const char*()>(list_next_element);
    exists<void()>(list_end);
}

TEST(PublicRuntime, HasThePathSearch) {
    exists<int(char*, std::int32_t)>(resolve_path);
    exists<void(const char*, std::int32_t, char*, std::int32_t, std::int32_t*)>(resolve_path_fixed);
    exists<void(const char*, std::int32_t, std::int32_t*)>(expand_existing);
    exists<void(const char*, char*, std::int32_t*, std::int32_t, std::int32_t)>(search_list);
    exists<int(const char*, const char*)>(load_found_messages);
    exists<const char*()>(config_directory);
    exists<const char*(const char*)>(first_existing_directory);
}

TEST(PublicRuntime, ReadsLinesFromAHostsOwnStream) {
    static_assert(std::is_constructible_v<CL8BFile, const char*>);
    static_assert(std::is_base_of_v<VCL8BLineSource, CL8BFile>);
    static_assert(std::has_virtual_destructor_v<CL8BFile>);
    std::FILE* stream = std::tmpfile();
    ASSERT_NE(stream, nullptr);
    std::fputs("one\n", stream);
    std::rewind(stream);
    CL8BFile source(stream);
    char line[16];
    EXPECT_EQ(source.readLine(line, sizeof line), 4u);
    EXPECT_STREQ(line, "one\n");
    std::fclose(stream);
}

TEST(PublicRuntime, KeepsAVariableThroughAFile) {
    const testing::TemporaryDirectory directory;
    const std::string file = directory.text() + "/a.cfg";
    message_store* store = create_store();
    const int section = find_or_add_section(store, "var");
    EXPECT_EQ(set_variable(store, section, "A = 1"), 0);
    EXPECT_EQ(store_parameters(store, file.c_str()), 0);
    destroy_store(store);

    message_store* read = load_message_file(nullptr, file.c_str());
    ASSERT_NE(read, nullptr);
    EXPECT_STREQ(find_parameter(read, find_section(read, "var"), "a", false), "1");
    destroy_store(read);
}

}  // namespace
}  // namespace trv
