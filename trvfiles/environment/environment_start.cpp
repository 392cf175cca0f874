#include <trvfiles/environment/configuration_loader.h>
#include <trvfiles/environment/environment_start.h>
#include <trvfiles/environment/guards.h>
#include <trvfiles/environment/message_file_internal.h>
#include <trvfiles/environment/path_text.h>
#include <trvfiles/environment/variable_expansion.h>
#include <trvfiles/environment/variables_internal.h>
#include <trvfiles/support/diagnostics.h>
#include <trvfiles/support/file_system.h>
#include <trvfiles/support/list_elements.h>

#include <algorithm>
#include <initializer_list>
#include <string>
#include <string_view>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

constexpr char file_name[] = "environ.cfg";

// Set while the environment is loaded: the conditions and expansions of the load look up variables,
// and each of these lookups asks for the environment.
bool running = false;

void report_not_loaded(const std::string& path) {
    report_fatal(("Error loading '" + path + "'\n").c_str());
}

void trace_loading(const std::string& path) {
    if (trace_is_seen()) report_trace(("loading configuration file '" + path + "'").c_str());
}

// Compares paths in the form in which the system opens them: the root has "/", lists have "\".
bool is_same_file(const std::string& left, const std::string& right) {
    return native_path(left.c_str()) == native_path(right.c_str());
}

// A new environment store, which lookups see while it is being filled. Destroyed on every way out,
// unless keep() has been called: a half-loaded store would prevent the next try.
class filling_store {
public:
    filling_store() { loaded_stores.environment = create_store(); }
    ~filling_store() {
        if (kept_) return;
        destroy_store(loaded_stores.environment);
        loaded_stores.environment = nullptr;
    }
    filling_store(const filling_store&) = delete;
    filling_store& operator=(const filling_store&) = delete;

    message_store* get() const { return loaded_stores.environment; }
    void keep() { kept_ = true; }

private:
    bool kept_ = false;
};

// The store is in place before the file is read: conditions see the entries above them in the file.
bool load_home_file(std::string_view root, const std::string& path) {
    trace_loading(path);
    if (root.empty() || !fits_path_buffer(path)) return false;
    filling_store store;
    if (store.get() == nullptr) return false;
    if (load_file(store.get(), path.c_str(), plain_sink) != load_result::loaded) return false;
    store.keep();
    return true;
}

bool load_second_file(const std::string& path) {
    trace_loading(path);
    // A path that does not fit counts as that of a missing file, and a missing file is no failure.
    if (!fits_path_buffer(path)) return true;
    return load_file(loaded_stores.environment, path.c_str(), merging_sink) != load_result::failed;
}

// These entries belong to no file and are never written into one: they are not persistent.
void define_predefined_variables() {
    const int section = find_section(loaded_stores.environment, "var");
    if (section < 0) return;
    const record_guard not_persistent(false);
    set_variable(loaded_stores.environment, section, "WINDOWS = 1");
    set_variable(loaded_stores.environment, section, "PC = 1");
}

bool read_directories(std::string& list) {
    char buffer[path_buffer_size];
    if (is_expand_error(_Expand("?ENV", buffer, sizeof buffer))) {
        report_fatal("Error loading 'environ.cfg' files\n");
        return false;
    }
    list = buffer;
    return true;
}

// Consumes directories from the end of the list whose files are in `loaded`. What is left ends with
// the last directory that has another file. Blanks belong to the directories.
//
// @return that file; an empty text, with an empty list, if there is none
std::string cut_to_last_other_file(std::string& list, std::initializer_list<std::string> loaded) {
    while (!list.empty()) {
        const std::size_t separator = list.find_last_of(list_separators);
        const bool first = separator == std::string::npos;
        const std::string_view directory =
            without_trailing_separator(std::string_view(list).substr(first ? 0 : separator + 1));
        if (!directory.empty()) {
            std::string file = path_in(directory, file_name);
            const bool is_loaded = std::any_of(
                loaded.begin(), loaded.end(),
                [&file](const std::string& other) { return is_same_file(file, other); });
            if (!is_loaded) return file;
        }
        list.resize(first ? 0 : separator);
    }
    return {};
}

enum class start_result { failed, home_file_only, two_files, more_files };

// Loads the home file and the second file. For `more_files`, `rest` lists the directories to load.
start_result load_first_files(std::string& rest) {
    const char* installation = install_root(true);
    if (installation == nullptr) {
        report_fatal("The environment variable 'TRVHOME' is not defined\n");
        return start_result::failed;
    }
    const std::string root(without_trailing_separator(installation));
    const std::string home = path_in(path_in(root, "config"), file_name);
    if (!load_home_file(root, home)) {
        report_not_loaded(home);
        return start_result::failed;
    }
    define_predefined_variables();

    if (!read_directories(rest)) return start_result::failed;
    const std::string second = cut_to_last_other_file(rest, {home});
    if (second.empty()) return start_result::home_file_only;
    if (!load_second_file(second)) report_not_loaded(second);

    if (!read_directories(rest)) return start_result::failed;
    const std::string third = cut_to_last_other_file(rest, {home, second});
    return third.empty() ? start_result::two_files : start_result::more_files;
}

// The trace lines of the first files show in verbose mode only, even if the host echoes all output.
start_result load_first_files_without_echo(std::string& rest) {
    const echo_guard without_echo;
    return load_first_files(rest);
}

}  // namespace

void load_environment() {
    if (running || loaded_stores.environment != nullptr) return;
    const running_guard guard(running);
    // The dots say how far the start came: one after the home file, two after the second file.
    report_trace("LOADING ENVIRONMENT FILES ....");
    std::string rest;
    switch (load_first_files_without_echo(rest)) {
        case start_result::failed:
            return;
        case start_result::home_file_only:
            report_trace(".LOADING ENVIRONMENT FILES ....done.");
            return;
        case start_result::two_files:
            report_trace("..LOADING ENVIRONMENT FILES ....done.");
            return;
        case start_result::more_files:
            overload_files(loaded_stores.environment, rest.c_str(), file_name);
            report_trace("LOADING ENVIRONMENT FILES ....done.");
            return;
    }
}

}  // namespace trv
