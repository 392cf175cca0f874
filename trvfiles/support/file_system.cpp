#include <trvfiles/support/blanks.h>
#include <trvfiles/support/file_system.h>
#include <trvfiles/support/list_elements.h>
#include <trvfiles/support/platform.h>
#include <trvfiles/support/program_root.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

// The size of a path in bytes, terminator included. A longer path is never cut and then opened.
constexpr std::size_t path_size = 512;
constexpr int directory_name_size = 128;

constexpr bool is_separator(char c) {
    return c == '/' || c == '\\';
}

// Writes at most size - 1 characters and a terminator. Returns the length of the whole text.
std::size_t write_collapsed(const char* source, char* destination, std::size_t size) {
    std::size_t length = 0;
    for (bool in_run = false; *source != '\0'; ++source) {
        const bool separates = is_separator(*source);
        if (!(separates && in_run)) {
            if (length + 1 < size) destination[length] = separates ? '\\' : *source;
            ++length;
        }
        in_run = separates;
    }
    destination[length < size ? length : size - 1] = '\0';
    return length;
}

// A path with its separators collapsed; empty, which names nothing, if it does not fit.
struct collapsed_path {
    explicit collapsed_path(const char* path) {
        if (path == nullptr || write_collapsed(path, text, sizeof text) >= sizeof text)
            *text = '\0';
    }
    char text[path_size];
};

// Creates the missing directories that end at a separator after the first one. After the first
// missing one all are missing, so only the ones before it are looked up. REQUIRES: no two
// separators in a row.
bool make_parents(char* path) {
    char* const root = std::strchr(path, '\\');
    if (root == nullptr) return true;
    bool creating = false;
    for (char* end = std::strchr(root + 1, '\\'); end != nullptr;
         end = std::strchr(end + 1, '\\')) {
        *end = '\0';
        creating = creating || !is_directory(path);
        const bool failed = creating && make_directory(path) != 0;
        *end = '\\';
        if (failed) return false;
    }
    return true;
}

bool is_set(const char* value) {
    return value != nullptr && *value != '\0';
}

std::string root_outside_trvhome() {
    const char* server_root = platform::get_environment("TRVHOME_LS");
    return is_set(server_root) ? server_root : root_of_program(platform::program_file());
}

struct list_cursor {
    std::string list;
    std::size_t position = 0;
    std::string element;
};

// Never destroyed: static objects of a host may still walk a list.
list_cursor& cursor() {
    static list_cursor& only = *new list_cursor;
    return only;
}

}  // namespace

std::string native_path(const char* path) {
    return platform::native_path(path);
}

int fileExists(const char* path) {
    if (path == nullptr || *path == '\0') return 0;
    if (std::strpbrk(path, "*?") == nullptr) return platform::path_exists(path) ? 1 : 0;
    file_listing* const listing = list_matching(path);
    const int count = listing_count(listing);
    listing_free(listing);
    return count > 0 ? 1 : 0;
}

bool is_directory(const char* path) {
    return platform::directory_exists(path);
}

bool is_directory_collapsed(const char* path) {
    return is_directory(collapsed_path(path).text);
}

int make_directory(const char* path) {
    const int reason = platform::create_directory(path);
    return reason == 0 || reason == EACCES ? 0 : -1;
}

int make_directory_collapsed(const char* path) {
    return make_directory(collapsed_path(path).text);
}

int make_path(const char* path) {
    collapsed_path work(path);
    if (!make_parents(work.text)) return -1;
    return is_directory(work.text) ? 0 : make_directory(work.text);
}

void collapse_separators(const char* source, char* destination, std::size_t size) {
    if (destination == nullptr || size == 0) return;
    write_collapsed(source == nullptr ? "" : source, destination, size);
}

const char* current_directory_name(char* buffer, int size) {
    if (buffer == nullptr || size < 1) return nullptr;
    *buffer = '\0';
    const std::string directory = platform::current_directory();
    if (directory.size() >= static_cast<std::size_t>(size)) return nullptr;
    std::memcpy(buffer, directory.c_str(), directory.size() + 1);
    const char* const separator = std::strrchr(buffer, '\\');
    return separator == nullptr ? nullptr : separator + 1;
}

const char* current_directory_name(char* buffer) {
    return current_directory_name(buffer, directory_name_size);
}

const char* directory_identity(const char* path) {
    static char text[sizeof "00000000-00000000-00000000"];
    platform::file_identity identity = {};
    if (!platform::read_identity(path, identity)) return nullptr;
    *text = '\0';
    if (identity.is_directory) {
        static_cast<void>(std::snprintf(text, sizeof text, "%.8X-%.8X-%.8X", identity.volume,
                                        identity.index_high, identity.index_low));
    }
    return text;
}

const char* install_root(bool publish) {
    // Never destroyed: static objects of a host may still use the root.
    static std::string& root = *new std::string;
    const char* home = platform::get_environment("TRVHOME");
    if (is_set(home)) {
        root = home;
        return root.c_str();
    }
    root = root_outside_trvhome();
    if (root.empty()) return nullptr;
    if (publish) platform::set_environment("TRVHOME", root.c_str());
    return root.c_str();
}

void list_begin(const char* list) {
    // The list may be the element that the cursor holds.
    cursor() = {list == nullptr ? std::string() : list, 0, {}};
}

const char* list_next_element() {
    list_cursor& at = cursor();
    std::string_view rest = std::string_view(at.list).substr(at.position);
    std::string_view element;
    while (consume_list_element(rest, element)) {
        element = trim(element);
        if (element.empty()) continue;
        at.position = at.list.size() - rest.size();
        at.element = element;
        return at.element.c_str();
    }
    at.position = at.list.size();
    return nullptr;
}

void list_end() {
    cursor() = {};
}

}  // namespace trv
