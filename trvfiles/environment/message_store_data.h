#pragma once

/// @file
/// What a store is made of, for the sources that implement it.
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
    // The section that was looked for last. Sections stay where they are, so it is the first of its
    // name.
    mutable std::uint32_t last_found = 0;
};

/// find_section() of a name whose length is known. Most often it is the name of the call before.
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
/// @param record  set where a value is found, otherwise left alone
/// @return the value; a view of nothing, with a null pointer, for none
std::string_view find_value(const message_store& store, int section, std::string_view name,
                            bool exact, const text_record** record = nullptr);

}  // namespace trv
