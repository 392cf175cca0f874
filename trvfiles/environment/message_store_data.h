#pragma once

/// @file
/// The members of a store, for the sources that implement it.
///
/// Threads: one at a time.

#include <trvfiles/environment/name_index.h>
#include <trvfiles/environment/store_section.h>
#include <trvfiles/environment/stored_vector.h>
#include <trvfiles/environment/text_pool.h>

#include <cstdint>
#include <string_view>

namespace trv {

struct message_store {
    text_pool texts;
    stored_vector<store_section> sections;
    name_index section_names;
    // The index of the section that was found last by its name. Sections never move or change their
    // names, so it stays the first one of its name.
    mutable std::uint32_t last_found = 0;
};

/// find_section() of a name whose length is known. Lookups mostly ask for the section of the lookup
/// before: comparing one name first saves the hash.
int search_section(const message_store& store, std::string_view name);
inline int find_section(const message_store& store, std::string_view name) {
    const std::uint32_t last = store.last_found;
    if (last < store.sections.size() && store.sections[last].has_name(name)) {
        return static_cast<int>(last);
    }
    return search_section(store, name);
}

/// find_parameter() of a name whose length is known.
///
/// @param record  set if a value is found, otherwise unchanged
/// @return the value; a view with data() == nullptr if there is none
std::string_view find_value(const message_store& store, int section, std::string_view name,
                            bool exact, const text_record** record = nullptr);

}  // namespace trv
