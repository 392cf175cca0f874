#include <trvfiles/environment/entry_text.h>
#include <trvfiles/environment/store_section.h>
#include <trvfiles/support/ascii_case.h>

#include <algorithm>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

int number_of(std::uint32_t place) {
    return place == name_index::none ? -1 : static_cast<int>(place);
}

}  // namespace

store_section::store_section(std::string_view name)
    : name_length_(static_cast<std::uint8_t>(name.size())) {
    std::copy(name.begin(), name.end(), name_);
}

int store_section::find_entry(const text_pool& pool, std::string_view name) const {
    return number_of(exact_names_.first(hash_name(name), [&](std::uint32_t place) {
        return is_named(pool.at(texts_[place]), name);
    }));
}

int store_section::find_live_entry(const text_pool& pool, std::string_view name, bool exact) const {
    if (exact) {
        return number_of(exact_names_.first(hash_name(name), [&](std::uint32_t place) {
            const std::int32_t text = texts_[place];
            return (pool.record(text).flags & deleted_text) == 0 && is_named(pool.at(text), name);
        }));
    }
    return number_of(live_names_.first(hash_name_ignoring_case(name), [&](std::uint32_t place) {
        return is_named_ignoring_case(pool.at(texts_[place]), name);
    }));
}

void store_section::reserve(int number, std::string_view text) {
    const auto messages = static_cast<std::size_t>(number) + 1;
    if (messages > texts_.size()) reserve_room(texts_, messages - texts_.size());
    if (!is_entry(text)) return;
    exact_names_.reserve(static_cast<std::uint32_t>(number));
    live_names_.reserve(static_cast<std::uint32_t>(number));
}

void store_section::set(const text_pool& pool, int number, std::int32_t text) noexcept {
    if (has_message(number)) {
        texts_[static_cast<std::size_t>(number)] = text;
    } else {
        texts_.push_back(text);
    }
    update_indexes(pool, number);
}

void store_section::update_indexes(const text_pool& pool, int number) noexcept {
    const auto place = static_cast<std::uint32_t>(number);
    const std::string_view changed = pool.at(text(number));
    if (!is_entry(changed)) {
        exact_names_.remove(place);
        live_names_.remove(place);
        return;
    }
    const std::string_view name = entry_name(changed);
    exact_names_.put(place, hash_name(name));
    if ((pool.record(text(number)).flags & deleted_text) == 0) {
        live_names_.put(place, hash_name_ignoring_case(name));
    } else {
        live_names_.remove(place);
    }
}

}  // namespace trv
