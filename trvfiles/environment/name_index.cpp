#include <trvfiles/environment/name_index.h>

#include <cstring>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

constexpr std::size_t fewest_chains = 8;

// Takes eight characters at a time, as `fold` leaves them.
template <class Fold>
std::uint32_t hash_of(std::string_view name, Fold fold) {
    constexpr std::uint64_t factor = 0x9E3779B97F4A7C15;
    std::uint64_t hash = name.size() * factor;
    const auto take = [&](std::uint64_t characters) {
        hash = (hash ^ fold(characters)) * factor;
        hash ^= hash >> 32;
    };
    while (name.size() >= sizeof(std::uint64_t)) {
        std::uint64_t characters = 0;
        std::memcpy(&characters, name.data(), sizeof characters);
        take(characters);
        name.remove_prefix(sizeof characters);
    }
    std::uint64_t rest = 0;
    for (const char c : name)
        rest = rest << 8 | static_cast<unsigned char>(c);
    take(rest);
    return static_cast<std::uint32_t>(hash);
}

}  // namespace

std::uint32_t hash_name(std::string_view name) {
    return hash_of(name, [](std::uint64_t characters) { return characters; });
}

// In each ASCII character, letter or not, the bit goes in which the cases of a letter differ: names
// that differ in more have to be compared anyway.
std::uint32_t hash_name_ignoring_case(std::string_view name) {
    return hash_of(name, [](std::uint64_t characters) {
        const std::uint64_t beyond_ascii = characters & 0x8080808080808080;
        return characters & (0xDFDFDFDFDFDFDFDF | beyond_ascii >> 2);
    });
}

void name_index::reserve(std::uint32_t place) {
    if (place < links_.size()) return;
    std::size_t chains = fewest_chains;
    while (chains <= place)
        chains *= 2;
    links_.reserve(chains);
    spread(chains);
    links_.resize(chains);
}

void name_index::spread(std::size_t chains) {
    stored_vector<chain> wider(chains);
    chains_.swap(wider);
    for (std::uint32_t place = 0; place < links_.size(); ++place) {
        if (is_inside(place)) add(place, links_[place].hash);
    }
}

void name_index::put(std::uint32_t place, std::uint32_t hash) noexcept {
    if (is_inside(place) && links_[place].hash == hash) return;
    remove(place);
    add(place, hash);
}

void name_index::add(std::uint32_t place, std::uint32_t hash) noexcept {
    chain& places = chains_[chain_of(hash)];
    link& added = links_[place];
    added.hash = hash;
    added.next = none;
    if (places.first == none) {
        places.first = places.last = place;
    } else if (places.last < place) {
        links_[places.last].next = place;
        places.last = place;
    } else {
        std::uint32_t* next = &places.first;
        while (*next < place)
            next = &links_[*next].next;
        added.next = *next;
        *next = place;
    }
}

void name_index::remove(std::uint32_t place) noexcept {
    if (!is_inside(place)) return;
    chain& places = chains_[chain_of(links_[place].hash)];
    std::uint32_t before = none;
    std::uint32_t* next = &places.first;
    while (*next != place) {
        before = *next;
        next = &links_[before].next;
    }
    *next = links_[place].next;
    if (places.last == place) places.last = before;
    links_[place].next = outside;
}

}  // namespace trv
