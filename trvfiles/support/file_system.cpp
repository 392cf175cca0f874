#include <trvfiles/support/file_system.h>
#include <trvfiles/support/platform.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string_view>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

// Room for a path in the runtime, terminator included. A longer one is never cut and then used.
constexpr std::size_t path_space = 512;
constexpr int directory_name_space = 128;

constexpr bool is_separator(char c) {
    return c == '/' || c == '\\';
}

// Writes at most size - 1 characters and a terminator; gives the length of the whole text.
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

// A path with its separators collapsed; an empty one where there is no room for it.
struct collapsed_path {
    explicit collapsed_path(const char* path) {
        if (path == nullptr || write_collapsed(path, text, sizeof text) >= sizeof text)
            *text = '\0';
    }
    char text[path_space];
};

// Makes the directories that end at the separators behind the first one, from the first missing one
// on. The separators are single.
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
    return current_directory_name(buffer, directory_name_space);
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

}  // namespace trv
