#include <trvfiles/support/blanks.h>
#include <trvfiles/support/directory_list.h>
#include <trvfiles/support/file_system.h>

#include <algorithm>
#include <string>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

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

bool next_list_element(std::string_view& rest, std::string_view& element) {
    const std::size_t begin = rest.find_first_not_of(list_separators);
    if (begin == std::string_view::npos) {
        rest = {};
        return false;
    }
    const std::size_t end = std::min(rest.find_first_of(list_separators, begin), rest.size());
    element = rest.substr(begin, end - begin);
    rest.remove_prefix(end);
    return true;
}

void list_begin(const char* list) {
    // The list may be the element that the cursor holds.
    cursor() = {list == nullptr ? std::string() : list, 0, {}};
}

const char* list_next_element() {
    list_cursor& at = cursor();
    std::string_view rest = std::string_view(at.list).substr(at.position);
    std::string_view element;
    while (next_list_element(rest, element)) {
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
