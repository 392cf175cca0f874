#pragma once

#include <trvfiles/environment/message_store.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace trv::testing {

struct StoreDestroyer {
    void operator()(message_store* store) const noexcept { destroy_store(store); }
};

/// A store that is destroyed at the end of the test.
class Store : public std::unique_ptr<message_store, StoreDestroyer> {
public:
    Store() : unique_ptr(create_store()) {}
    // NOLINTNEXTLINE(google-explicit-constructor): usable like a plain pointer to a store.
    operator message_store*() const { return get(); }
};

constexpr std::int32_t byProgram = -1;

/// The record of a text, which is directly before it.
inline const text_record& recordOf(const char* text) {
    return *(reinterpret_cast<const text_record*>(text) - 1);
}

/// All texts of a section as they are stored.
inline std::vector<std::string> messagesOf(const message_store* store, int section) {
    std::vector<std::string> messages;
    messages.reserve(static_cast<std::size_t>(std::max(message_count(store, section), 0)));
    for (int number = 0; number < message_count(store, section); ++number)
        messages.emplace_back(get_message(store, section, number));
    return messages;
}

/// The value of an entry, or "<none>".
inline std::string valueOf(const message_store* store, int section, const char* name,
                           bool exact = true) {
    const char* value = find_parameter(store, section, name, exact);
    return value == nullptr ? "<none>" : value;
}

/// What describe_origin() says of a text, or "<none>".
inline std::string originOf(const message_store* store, const char* text) {
    char buffer[1024];
    return describe_origin(buffer, sizeof buffer, store, text) == 0 ? buffer : "<none>";
}

/// Loads a file into a store in the simplest way: without comments and directives. A header adds a
/// section or, when the file is merged, finds it; an entry is added or, merged, set by its name.
inline void loadPlainly(message_store* store, const std::string& path, bool merge) {
    const std::int32_t file = register_file_name(store, path.c_str());
    std::ifstream lines(path);
    int section = -1;
    int number = 0;
    for (std::string line; std::getline(lines, line);) {
        ++number;
        if (line.substr(0, 1) == "[") {
            const std::string name = line.substr(1, line.find(']') - 1);
            section =
                merge ? find_or_add_section(store, name.c_str()) : add_section(store, name.c_str());
        } else if (merge) {
            set_parameter(store, section, line.c_str(), file, number);
        } else {
            append_message(store, section, line.c_str(), file, number);
        }
    }
}

}  // namespace trv::testing
