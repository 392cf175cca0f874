#pragma once

/// @file
/// An index of names beside a list: which places of the list have a given name.
///
/// It keeps hashes, not names; whoever owns the list compares the names themselves. The places of
/// one name are visited in ascending order, whatever the order in which they came and went, so the
/// first hit is the one that a walk along the list would find.
///
/// Threads: one at a time, as the list.

#include <trvfiles/environment/stored_vector.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace trv {

/// The hash of a name as it stands, or the one it shares with all that differ in case alone.
std::uint32_t hash_name(std::string_view name);
std::uint32_t hash_name_ignoring_case(std::string_view name);

class name_index {
public:
    static constexpr std::uint32_t none = 0xFFFFFFFF;

    /// Makes room for a place, so that adding it cannot fail.
    ///
    /// @throws std::bad_alloc; the index is then as it was
    void reserve(std::uint32_t place);

    /// Adds a place, or moves it to this hash. REQUIRES: reserve() of it.
    void put(std::uint32_t place, std::uint32_t hash) noexcept;

    /// Takes a place out; one that is not in the index stays out.
    void remove(std::uint32_t place) noexcept;

    /// The first place of this hash for which `matches(place)` is true, or `none`.
    template <class Matches>
    std::uint32_t first(std::uint32_t hash, Matches matches) const {
        if (chains_.empty()) return none;
        std::uint32_t place = chains_[chain_of(hash)].first;
        while (place != none && (links_[place].hash != hash || !matches(place)))
            place = links_[place].next;
        return place;
    }

private:
    // The places whose hashes fall together, linked in ascending order.
    struct chain {
        std::uint32_t first = none;
        std::uint32_t last = none;
    };
    struct link {
        std::uint32_t hash = 0;
        std::uint32_t next = outside;
    };
    // In place of the next one: this place is not in the index.
    static constexpr std::uint32_t outside = none - 1;

    std::size_t chain_of(std::uint32_t hash) const { return hash & (chains_.size() - 1); }
    bool is_inside(std::uint32_t place) const {
        return place < links_.size() && links_[place].next != outside;
    }
    void add(std::uint32_t place, std::uint32_t hash) noexcept;
    void spread(std::size_t chains);

    // As many as there are links, a power of two; links that no place has come for stand outside.
    stored_vector<chain> chains_;
    stored_vector<link> links_;
};

}  // namespace trv
