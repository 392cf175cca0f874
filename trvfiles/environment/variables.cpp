#include <trvfiles/environment/guards.h>
#include <trvfiles/environment/message_store_data.h>
#include <trvfiles/environment/runtime.h>
#include <trvfiles/environment/variables.h>
#include <trvfiles/environment/variables_internal.h>
#include <trvfiles/support/ascii_case.h>
#include <trvfiles/support/blanks.h>
#include <trvfiles/support/platform.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

namespace trv {

process_stores loaded_stores;

namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

// Atomic, because lookups that only read may run on several threads once the first one is done.
std::atomic<std::uint32_t> hook_call_count{0};

zone_hook_function zone_hook;
bool zone_hook_is_running = false;

constexpr std::string_view temporary_directory_name = "TMP";
constexpr std::string_view zone_name = "TRVZONE";
constexpr const char* null_text_name = "TRVNULL";
constexpr const char* path_suffix = "PATH";

// An empty value of one of these variables counts as unset. For all others it is a value.
constexpr std::string_view unset_when_empty[] = {"TRVHOME", "TRVHOME_LS", "TRVTMPDIR",
                                                 "TRV_EXPAND_LOGFILE_NAME", "TRV_MCTX_DEF"};

// Called before the hook, so that a hook which throws is counted too.
void count_hook_call() {
    hook_call_count.fetch_add(1, std::memory_order_relaxed);
}

void run_zone_hook() {
    if (!zone_hook.is_set() || zone_hook_is_running) return;
    count_hook_call();
    const running_guard guard(zone_hook_is_running);
    // A copy: the hook may replace itself.
    const zone_hook_function hook = zone_hook;
    hook();
}

bool counts_as_unset(std::string_view name, const char* value) {
    return *value == '\0' && std::find(std::begin(unset_when_empty), std::end(unset_when_empty),
                                       name) != std::end(unset_when_empty);
}

const char* environment_value(const char* name) {
    const char* value = platform::get_environment(name);
    return value == nullptr || counts_as_unset(name, value) ? nullptr : value;
}

const char* parameter(const message_store* store, const char* section, const char* name) {
    const int index = find_section(store, section);
    return index < 0 ? nullptr : find_parameter(store, index, name, false);
}

// The value of an entry of the environment's store without its trailing blanks. They are cut in the
// store, so that the value can be returned without a copy. The texts of a store are not constant
// objects: it only hands them out as constant.
const char* configured_value(std::string_view section, std::string_view name) {
    const message_store* store = loaded_stores.environment;
    if (store == nullptr) return nullptr;
    const std::string_view value = find_value(*store, find_section(*store, section), name, false);
    if (value.data() == nullptr) return nullptr;
    const std::size_t kept = trim_trailing(value).size();
    if (kept < value.size()) const_cast<char*>(value.data())[kept] = '\0';
    return value.data();
}

// Loads the environment, and then returns the value of an entry of its store. Loading may set the
// variable in the process environment, as install_root() sets TRVHOME, so that is read again first.
//
// REQUIRES: texts that lookups and handlers do not overwrite.
const char* value_after_loading(const char* variable, std::string_view section,
                                std::string_view name) {
    count_hook_call();
    runtime_hooks.load_environment();
    const char* value = environment_value(variable);
    return value != nullptr ? value : configured_value(section, name);
}

int write_origin(char* buffer, std::size_t size, std::string_view origin) {
    if (buffer == nullptr || size == 0) return 0;
    buffer[origin.copy(buffer, size - 1)] = '\0';
    return 0;
}

}  // namespace

const char* find_variable(std::string_view name) {
    if (name == temporary_directory_name) {
        count_hook_call();
        return runtime_hooks.temporary_directory();
    }
    if (name == zone_name) {
        run_zone_hook();
        // The caller's text may be the result of a lookup, which lookups of the hook overwrite.
        name = zone_name;
    }
    const char* value = environment_value(name.data());
    if (value != nullptr) return value;
    if (loaded_stores.environment != nullptr) return configured_value("var", name);
    // Copied only here: this lookup loads, which happens once in a process.
    const std::string kept(name);
    return value_after_loading(kept.c_str(), "var", kept);
}

std::uint32_t hook_calls() {
    return hook_call_count.load(std::memory_order_relaxed);
}

zone_hook_function exchange_zone_hook(zone_hook_function hook) {
    return std::exchange(zone_hook, hook);
}

const char* get_variable(const char* name) {
    return name == nullptr ? nullptr : find_variable(name);
}

const char* get_path_variable(const char* name) {
    if (name == nullptr) return nullptr;
    // One copy serves both names: the entry is the beginning of the variable.
    const std::string variable = std::string(name) + path_suffix;
    const std::string_view entry(variable.data(), variable.size() - std::strlen(path_suffix));
    const char* value = environment_value(variable.c_str());
    if (value != nullptr) return value;
    if (loaded_stores.environment != nullptr) return configured_value("path", entry);
    return value_after_loading(variable.c_str(), "path", entry);
}

std::string null_value(const char* name) {
    // A copy: the name may be a text that the lookup overwrites.
    const std::string replacement = name == nullptr ? "" : name;
    const char* value = get_variable(null_text_name);
    std::string text = value == nullptr ? "" : value;
    const std::size_t mark = text.find('$');
    if (mark != std::string::npos) text.replace(mark, 1, replacement);
    return text;
}

bool is_on(const char* value) {
    return value != nullptr && !equal_ignoring_case(value, "OFF");
}

bool variable_is_on(const char* name) {
    return is_on(get_variable(name));
}

int describe_variable_origin(char* buffer, std::size_t size, const char* name, const char* value) {
    // The order of find_variable(): the process environment comes before the store.
    const char* asked = name == nullptr ? "" : name;
    if (asked == temporary_directory_name) {
        if (environment_value("TRVTMPDIR") != nullptr) {
            return write_origin(buffer, size, "from environment variable TRVTMPDIR");
        }
    } else if (environment_value(asked) != nullptr) {
        return write_origin(buffer, size, "from environment");
    }
    return describe_origin(buffer, size, loaded_stores.environment, value);
}

int describe_path_origin(char* buffer, std::size_t size, const char* name, const char* value) {
    const std::string variable = (name == nullptr ? "" : name) + std::string(path_suffix);
    if (environment_value(variable.c_str()) != nullptr) {
        return write_origin(buffer, size, "from environment '" + variable + "'");
    }
    return describe_origin(buffer, size, loaded_stores.environment, value);
}

message_store* environment_store() {
    return loaded_stores.environment;
}

message_store* application_store() {
    return loaded_stores.application;
}

message_store* catalogue_store() {
    return loaded_stores.catalogue;
}

const char* get_application_parameter(const char* section, const char* name) {
    return parameter(loaded_stores.application, section, name);
}

const char* get_catalogue_message(const char* section, int number) {
    const int index = find_section(loaded_stores.catalogue, section);
    return index < 0 ? nullptr : get_message(loaded_stores.catalogue, index, number);
}

const char* get_catalogue_parameter(const char* section, const char* name) {
    return parameter(loaded_stores.catalogue, section, name);
}

}  // namespace trv
