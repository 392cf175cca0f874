#include <trvfiles/environment/name_index.h>
#include <trvfiles/support/ascii_case.h>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

constexpr std::size_t fewest_chains = 8;

// FNV-1a, with the high bits folded in because only low ones choose a chain.
class hasher {
public:
    void take(char c) { hash_ = (hash_ ^ static_cast<unsigned char>(c)) * 16777619U; }
    std::uint32_t hash() const { return hash_ ^ (hash_ >> 15); }

private:
    std::uint32_t hash_ = 2166136261U;
};

}  // namespace

std::uint32_t hash_name(std::string_view name) {
    hasher hash;
    for (const char c : name)
        hash.take(c);
    return hash.hash();
}

std::uint32_t hash_name_ignoring_case(std::string_view name) {
    hasher hash;
    for (const char c : name)
        hash.take(fold_case(c));
    return hash.hash();
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
