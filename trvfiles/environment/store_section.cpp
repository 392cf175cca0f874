#include <trvfiles/environment/entry_text.h>
#include <trvfiles/environment/name_hash.h>
#include <trvfiles/environment/store_section.h>
#include <trvfiles/support/ascii_case.h>

#include <algorithm>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

int number_of(std::uint32_t place) {
    return place == name_index::none ? -1 : static_cast<int>(place);
}

// A deleted entry is kept under another hash, so that a lookup of live entries does not visit it.
// Otherwise each lookup of a name would be a walk over all removed entries of that name.
std::uint32_t hash_of_deleted(std::uint32_t hash) {
    return ~hash;
}

}  // namespace

store_section::store_section(std::string_view name)
    : name_length_(static_cast<std::uint8_t>(name.size())) {
    std::copy(name.begin(), name.end(), name_);
}

std::uint32_t store_section::first_named(const text_pool& pool, std::string_view name,
                                         std::uint32_t hash) const {
    return exact_names_.first(
        hash, [&](std::uint32_t place) { return is_named(pool.at(texts_[place]), name); });
}

int store_section::find_entry(const text_pool& pool, std::string_view name) const {
    const std::uint32_t hash = hash_name(name);
    const std::uint32_t live = first_named(pool, name, hash);
    if (!has_deleted_) return number_of(live);
    // `none` is greater than all places, so the minimum is the first entry that exists.
    return number_of(std::min(live, first_named(pool, name, hash_of_deleted(hash))));
}

int store_section::find_live_entry(const text_pool& pool, std::string_view name, bool exact) const {
    if (exact) return number_of(first_named(pool, name, hash_name(name)));
    return number_of(live_names_.first(hash_name_ignoring_case(name), [&](std::uint32_t place) {
        return is_named_ignoring_case(pool.at(texts_[place]), name);
    }));
}

void store_section::reserve(int number, std::string_view text) {
    // reserve_room() doubles the capacity, so the time to append n messages grows as n.
    const auto messages = static_cast<std::size_t>(number) + 1;
    if (messages > texts_.size()) reserve_room(texts_, messages - texts_.size());
    if (!is_entry(text)) return;
    exact_names_.reserve(static_cast<std::uint32_t>(number));
    live_names_.reserve(static_cast<std::uint32_t>(number));
}

void store_section::set(const text_pool& pool, int number, std::int32_t text) noexcept {
    // push_back() does not throw here: reserve() has made room.
    if (has_message(number)) {
        texts_[static_cast<std::size_t>(number)] = text;
    } else {
        texts_.push_back(text);
    }
    update_indexes(pool, number);
}

void store_section::update_indexes(const text_pool& pool, int number) noexcept {
    // put() moves a place that is in the index already, so no old name has to be known here.
    const auto place = static_cast<std::uint32_t>(number);
    const std::string_view changed = pool.at(text(number));
    if (!is_entry(changed)) {
        exact_names_.remove(place);
        live_names_.remove(place);
        return;
    }
    const std::string_view name = entry_name(changed);
    if ((pool.record(text(number)).flags & deleted_text) == 0) {
        exact_names_.put(place, hash_name(name));
        live_names_.put(place, hash_name_ignoring_case(name));
    } else {
        exact_names_.put(place, hash_of_deleted(hash_name(name)));
        live_names_.remove(place);
        has_deleted_ = true;
    }
}

}  // namespace trv
