#include <trvfiles/environment/configuration_loader.h>
#include <trvfiles/environment/path_search.h>
#include <trvfiles/environment/path_text.h>
#include <trvfiles/environment/runtime_observer.h>
#include <trvfiles/environment/variable_expansion.h>
#include <trvfiles/support/dynamic_storage.h>
#include <trvfiles/support/file_system.h>
#include <trvfiles/support/list_elements.h>
#include <trvfiles/support/platform.h>
#include <trvfiles/support/text_field.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

// Not one of the statuses of the expansion.
constexpr int out_of_memory = -41;

// Three numbers beside that of path_text.h, each of which hosts know from the documentation.
constexpr std::size_t max_resolved_text = 509;
constexpr std::size_t max_list_text = 512;
constexpr std::int32_t list_field_width = 8192;
constexpr std::int32_t existing_field_width = path_buffer_size;
constexpr std::int32_t directory_list_size = 1536;

struct search_reference {
    std::string list;
    std::string name;
};

// Searches backwards: in "?A/?B/f" the last component with a "?" ends the list. The name stays
// empty if no component has a "?", or if nothing follows the last one that has.
search_reference split_reference(std::string_view text) {
    std::size_t cut = text.size();
    for (std::size_t i = text.size(); i-- > 0;) {
        if (is_path_separator(text[i])) {
            cut = i;
        } else if (text[i] == '?') {
            if (cut == text.size()) break;
            return {std::string(text.substr(0, cut)), std::string(text.substr(cut + 1))};
        }
    }
    return {};
}

// A text as long as the field is refused, although it would fit: the field may become a terminated
// text again, which needs the last byte.
bool is_narrower(std::string_view text, std::int32_t width) {
    return text.size() < static_cast<std::size_t>(width);
}

// @param observed  of the whole search: unless somebody observes it, no code of the host runs in it
bool try_candidate(const std::string& candidate, observation& observed) {
    const bool found = fileExists(candidate.c_str()) != 0;
    if (observed.is_on()) current_observer().candidate_tried({candidate, found});
    return found;
}

// Tries the name in each directory of an expanded list, and puts the outcome into the field.
int try_directories(std::string_view list, const std::string& name, char* field, std::int32_t width,
                    observation& observed) {
    std::string first;
    std::string_view element;
    while (consume_list_element(list, element)) {
        std::string candidate(trim(element));
        if (candidate.empty()) continue;
        // No "/" is left at the end: the expansion has normalised the separators.
        if (candidate.back() != '\\') candidate += '\\';
        candidate += name;
        if (first.empty()) first = candidate;
        if (!try_candidate(candidate, observed)) continue;
        const bool narrower = is_narrower(candidate, width);
        fill_field(field, width, narrower ? candidate : std::string());
        return narrower ? EXP_OK : EXP_BUFFER_TOO_SMALL;
    }
    fill_field(field, width, first);
    return EXP_NOT_FOUND;
}

struct storage_releaser {
    void operator()(char* block) const { _Wfree(block); }
};
using storage_text = std::unique_ptr<char, storage_releaser>;

// A copy in the checked heap, so that a list counts towards the storage maximum of the host.
// nullptr, after a report, if storage has run out.
storage_text copy_of(std::string_view text) {
    storage_text copy(static_cast<char*>(allocate_temporary(text.size() + 1)));
    if (copy != nullptr) copy.get()[text.copy(copy.get(), text.size())] = '\0';
    return copy;
}

// Searches for the name in the field, and leaves the outcome there.
int search(std::string_view list_text, char* name_field, std::int32_t width) {
    if (list_text.size() > max_list_text) return EXP_NAME_TOO_LONG;
    // A copy: the list may be a looked-up value, which expanding the name overwrites.
    std::array<char, list_field_width> list_field;
    fill_field(list_field.data(), list_field_width, list_text);

    std::int32_t code = EXP_OK;
    // EXP_UNDEFINED ends a search too: a list with an undefined part would search in other places.
    _ExpandFixed(name_field, width, &code);
    if (code != EXP_OK) return code;
    const std::string name(field_text(name_field, width));
    _ExpandFixed(list_field.data(), list_field_width, &code);
    if (code != EXP_OK) return code;
    const std::string_view expanded = field_text(list_field.data(), list_field_width);
    observation observed;
    if (observed.is_on()) current_observer().search_began({name, expanded});

    const storage_text list = copy_of(expanded);
    if (list == nullptr) return out_of_memory;
    return try_directories(list.get(), name, name_field, width, observed);
}

int search_for(const search_reference& reference, char* field, std::int32_t width) {
    fill_field(field, width, reference.name);
    return search(reference.list, field, width);
}

// Turns the caller's text back from a blank-padded field into a terminated text on every way out,
// also if an observer throws in the middle of the search.
class field_terminator {
public:
    field_terminator(char* field, std::int32_t width) : field_(field), width_(width) {}
    ~field_terminator() {
        const auto last = static_cast<std::size_t>(width_ - 1);
        field_[std::min(field_text(field_, width_).size(), last)] = '\0';
    }
    field_terminator(const field_terminator&) = delete;
    field_terminator& operator=(const field_terminator&) = delete;

private:
    char* field_;
    std::int32_t width_;
};

int status_of_existence(const char* path) {
    return fileExists(path) != 0 ? EXP_OK : EXP_NOT_FOUND;
}

int status_of_field(const char* field, std::int32_t width) {
    return status_of_existence(std::string(field_text(field, width)).c_str());
}

int resolve_field(const char* text, std::int32_t length, char* result, std::int32_t result_length) {
    if (text == nullptr || result == nullptr) return EXP_INVALID_ARGUMENT;
    if (result_length < 1) return EXP_BUFFER_TOO_SMALL;
    // A copy, which is split and expanded: text and result may overlap.
    const std::string whole(field_text(text, length));
    if (!fits_path_buffer(whole)) return EXP_NAME_TOO_LONG;
    const search_reference reference = split_reference(whole);
    if (!reference.name.empty()) {
        if (!is_narrower(reference.name, result_length)) return EXP_BUFFER_TOO_SMALL;
        return search_for(reference, result, result_length);
    }
    // A "?" without a name: "?CFG" is a list of directories and not a file.
    if (whole.find('?') != std::string::npos) return EXP_INVALID_ARGUMENT;

    std::int32_t code = EXP_OK;
    _ExpandFixed(whole.data(), static_cast<std::int32_t>(whole.size()), result, result_length,
                 &code);
    return code != EXP_OK ? code : status_of_field(result, result_length);
}

int expand_and_test(const char* text, std::int32_t length) {
    if (text == nullptr) return EXP_INVALID_ARGUMENT;
    const std::string_view trimmed = field_text(text, length);
    if (!fits_path_buffer(trimmed)) return EXP_BUFFER_TOO_SMALL;
    std::array<char, existing_field_width> field;
    fill_field(field.data(), existing_field_width, trimmed);
    std::int32_t code = EXP_OK;
    _ExpandFixed(field.data(), existing_field_width, &code);
    return code != EXP_OK ? code : status_of_field(field.data(), existing_field_width);
}

bool is_current_directory(std::string_view element) {
    return element == "." || element == ".\\" || element == "./";
}

void set_if_requested(std::int32_t* place, int code) {
    if (place != nullptr) *place = code;
}

}  // namespace

int resolve_path(char* text, std::int32_t size) {
    if (text == nullptr) return EXP_INVALID_ARGUMENT;
    if (size < 1) return EXP_BUFFER_TOO_SMALL;
    const std::string_view whole = text;
    if (whole.size() > max_resolved_text) return EXP_NAME_TOO_LONG;
    const search_reference reference = split_reference(whole);
    if (!reference.name.empty()) {
        if (!is_narrower(reference.name, size)) return EXP_BUFFER_TOO_SMALL;
        const field_terminator terminator(text, size);
        return search_for(reference, text, size);
    }
    if (whole.find('?') != std::string_view::npos) return EXP_INVALID_ARGUMENT;

    const int code = _ExpandInPlace(text, size);
    return code != EXP_OK ? code : status_of_existence(text);
}

void resolve_path_fixed(const char* text, std::int32_t length, char* result,
                        std::int32_t result_length, std::int32_t* code) {
    set_if_requested(code, resolve_field(text, length, result, result_length));
}

void expand_existing(const char* text, std::int32_t length, std::int32_t* code) {
    set_if_requested(code, expand_and_test(text, length));
}

void search_list(const char* list, char* name, std::int32_t* code, std::int32_t list_length,
                 std::int32_t name_width) {
    int status = EXP_BUFFER_TOO_SMALL;
    if (list == nullptr || name == nullptr) {
        status = EXP_INVALID_ARGUMENT;
    } else if (name_width >= 1) {
        status = search(field_text(list, list_length), name, name_width);
    }
    set_if_requested(code, status);
}

int load_found_messages(const char* name, const char* directory) {
    if (name == nullptr || directory == nullptr) return -1;
    const std::string joined = std::string(directory) + '\\' + name;
    std::array<char, path_buffer_size> path;
    if (!fits_path_buffer(joined)) return -1;
    std::memcpy(path.data(), joined.c_str(), joined.size() + 1);
    if (resolve_path(path.data(), static_cast<std::int32_t>(path.size())) != EXP_OK) return -1;
    return load_catalogue_file(path.data());
}

const char* config_directory() {
    return first_existing_directory("?CFG");
}

// The static buffer is constant-initialised and has no destructor: the function may be called from
// static objects of a host.
const char* first_existing_directory(const char* list) {
    static std::array<char, directory_list_size> directory;
    if (list == nullptr || std::strlen(list) >= directory_list_size) return nullptr;
    std::array<char, directory_list_size> expanded;
    std::memcpy(expanded.data(), list, std::strlen(list) + 1);
    if (is_expand_error(_ExpandText(expanded.data(), directory_list_size))) return nullptr;

    std::string_view rest = expanded.data();
    std::string_view element;
    while (consume_list_element(rest, element)) {
        // The element is a part of the list: a copy has the terminator that the system needs.
        const std::string path(element);
        if (is_current_directory(element) || !platform::path_exists(path.c_str())) continue;
        std::memcpy(directory.data(), path.c_str(), path.size() + 1);
        return directory.data();
    }
    return nullptr;
}

}  // namespace trv
