#include <trvfiles/environment/configuration_loader.h>
#include <trvfiles/environment/message_file_internal.h>
#include <trvfiles/environment/path_text.h>
#include <trvfiles/environment/runtime.h>
#include <trvfiles/environment/variable_expansion.h>
#include <trvfiles/environment/variables.h>
#include <trvfiles/environment/variables_internal.h>
#include <trvfiles/support/blanks.h>
#include <trvfiles/support/diagnostics.h>
#include <trvfiles/support/list_elements.h>

#include <string>
#include <string_view>
#include <vector>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

using path_buffer = char[path_buffer_size];

bool is_empty(const char* text) {
    return text == nullptr || *text == '\0';
}

// @return false after a failure, which has been reported
bool expand(const char* text, path_buffer& result) {
    if (text == nullptr) text = "";
    return !is_expand_error(_Expand(text, result, sizeof result));
}

// Expands both texts. The second one is copied first: it may be a looked-up value, which the
// lookups of the first one overwrite.
bool expand_both(const char* directory_list, path_buffer& list, const char* file_name,
                 path_buffer& name) {
    const std::string kept = file_name == nullptr ? "" : file_name;
    return expand(directory_list, list) && expand(kept.c_str(), name);
}

// The directories of a list, without the blanks around them and without one separator at the end.
// Elements that are empty then are left out.
std::vector<std::string_view> directories_of(std::string_view list) {
    std::vector<std::string_view> directories;
    std::string_view element;
    while (consume_list_element(list, element)) {
        element = without_trailing_separator(trim(element));
        if (!element.empty()) directories.push_back(element);
    }
    return directories;
}

// The store after loading the file: a new one if there was none, and the earlier one if the file is
// missing or has a fault.
message_store* overload_file(message_store* store, const std::string& path) {
    if (trace_is_seen()) report_trace(("Overloading '" + path + "'\n").c_str());
    if (!fits_path_buffer(path)) return store;
    message_store* loaded = load_message_file(store, path.c_str());
    return loaded != nullptr ? loaded : store;
}

message_store* overload_directories(message_store* store, std::string_view list,
                                    std::string_view file_name) {
    const std::vector<std::string_view> directories = directories_of(list);
    // Owns a store that this call makes, so that a handler which throws does not leak it. From the
    // last directory to the first: the file that is loaded last has the final word.
    store_owner made;
    for (auto directory = directories.rbegin(); directory != directories.rend(); ++directory) {
        message_store* loaded = overload_file(store, path_in(*directory, file_name));
        if (store == nullptr) made.reset(loaded);
        store = loaded;
    }
    static_cast<void>(made.release());
    return store;
}

// Loads into a store of the process, which the first load makes.
//
// @param load  takes the store or nullptr, and returns the store or nullptr. May be called twice.
template <class Load>
int load_into(message_store*& handle, Load load) {
    const bool is_first = handle == nullptr;
    message_store* loaded = load(handle);
    if (loaded != nullptr && is_first && handle != nullptr) {
        // A handler has made the store while this load ran. That store is kept, since the handler
        // may hold texts of it, and the file is loaded into it.
        destroy_store(loaded);
        loaded = load(handle);
    }
    if (loaded == nullptr) return -1;
    handle = loaded;
    return 0;
}

}  // namespace

message_store* overload_files(message_store* store, const char* directory_list,
                              const char* file_name) {
    path_buffer list;
    path_buffer name;
    if (expand_both(directory_list, list, file_name, name) && *name != '\0')
        store = overload_directories(store, list, name);
    return store != nullptr ? store : create_store();
}

int load_config_list(message_store* store, const char* file_name, const char* directory_list) {
    if (is_empty(file_name)) return 0;
    if (store == nullptr) return -1;
    path_buffer list;
    path_buffer name;
    if (directory_list == nullptr) directory_list = "?CFG";
    if (!expand_both(directory_list, list, file_name, name)) return -1;
    overload_files(store, list, name);
    return 0;
}

int load_application_files(const char* file_name, const char* directory_list) {
    if (is_empty(file_name)) return 0;
    path_buffer list;
    path_buffer name;
    if (!expand_both(directory_list, list, file_name, name)) return -1;
    return load_into(loaded_stores.application,
                     [&](message_store* store) { return overload_files(store, list, name); });
}

int load_catalogue_file(const char* path) {
    // A copy: the file may be read twice, and a handler may overwrite the caller's text in between.
    const std::string kept = path == nullptr ? "" : path;
    return load_into(loaded_stores.catalogue,
                     [&](message_store* store) { return load_message_file(store, kept.c_str()); });
}

int for_each_variable(int (*callback)(const char* name, const char* value, void* context),
                      void* context) {
    if (callback == nullptr) return -1;
    if (loaded_stores.environment == nullptr) runtime_hooks.load_environment();
    const message_store* store = loaded_stores.environment;
    const int section = find_section(store, "var");
    if (section < 0) return -1;
    for (int number = 0; number < message_count(store, section); ++number) {
        // Copies: the callback may add to the store, which moves its texts.
        const std::string_view text = get_message(store, section, number);
        const std::size_t equals = text.find('=');
        if (equals == std::string_view::npos) return 0;
        const std::string name(trim(text.substr(0, equals)));
        const std::string value(trim(text.substr(equals + 1)));
        const int result = callback(name.c_str(), value.c_str(), context);
        if (result != 0) return result;
    }
    return 0;
}

}  // namespace trv
