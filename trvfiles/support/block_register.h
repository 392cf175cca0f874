#pragma once

/// @file
/// The addresses that the checked heap knows: its live blocks and the blocks that it freed last. A
/// pointer is looked up by its address alone; the memory that it points to is not read.
///
/// Threads: one at a time.

#include <cstddef>
#include <cstdint>

namespace trv {

/// A hash table with open addressing and linear probing. Nothing is allocated per block. The
/// register is usable before any constructor has run and until the process ends.
class block_register {
public:
    /// The number of freed addresses that are remembered: the last ones.
    static constexpr std::uint16_t remembered_addresses = 4096;

    enum class state { unknown, live, freed };
    struct finding {
        state kind;
        std::uint32_t serial;  // 0 if the address is unknown
        std::size_t place;     // of the address in the table; valid until the next change
    };

    finding find(const void* address) const;

    /// Allocates the space for the next add().
    ///
    /// @return false if there is no memory for it
    bool reserve() { return (count_ + 1) * 2 <= size_ || grow(); }

    /// Adds a live block. Its address is no longer remembered as freed. REQUIRES: a reserve() since
    /// the last add(); the address is not live.
    void add(const void* address, std::uint32_t serial);

    /// Remembers a live block as freed. If the memory of freed addresses is full, the oldest one is
    /// forgotten. REQUIRES: find() found the block live and nothing has changed since.
    void retire(const finding& found);

private:
    struct entry {
        std::uintptr_t address;  // 0 if the place is empty
        std::uint32_t serial;
        std::uint16_t slot;  // of a freed address; 0 for a live block
    };
    struct freed_slot {
        std::uintptr_t address;
        std::uint16_t older;
        std::uint16_t newer;
    };

    std::size_t home_of(std::uintptr_t address) const;
    std::size_t next_place(std::size_t place) const { return (place + 1) & (size_ - 1); }
    std::size_t place_of(std::uintptr_t address) const;
    bool grow();
    void erase(std::uintptr_t address);
    void unlink(std::uint16_t slot);

    // All members are zero at first, so the register takes no space in the program file.
    entry* table_ = nullptr;
    std::size_t size_ = 0;
    unsigned shift_ = 0;
    std::size_t count_ = 0;
    // The freed addresses form a ring in the order in which they were freed; slot 0 closes it. The
    // slots of addresses that are live again form a chain through `newer`, which ends with 0.
    freed_slot freed_[remembered_addresses + 1] = {};
    std::uint16_t slots_used_ = 0;
    std::uint16_t vacant_ = 0;
};

// Neighbours in memory are neighbours in the table, so a program that walks its blocks stays in the
// cache: the blocks of one page of 4 096 bytes share 256 consecutive places. Multiplying the number
// of the page by the golden ratio (Fibonacci hashing) spreads the pages over the table.
inline std::size_t block_register::home_of(std::uintptr_t address) const {
    constexpr std::uint64_t golden_ratio = 0x9E3779B97F4A7C15;
    const auto stretch = static_cast<std::uint64_t>(address >> 12U) * golden_ratio >> shift_;
    return static_cast<std::size_t>(stretch + (address >> 4U & 255U)) & (size_ - 1);
}

// The place that holds the address, or the empty place in which to insert it. REQUIRES: a table,
// which always has an empty place: at most half of it is in use.
inline std::size_t block_register::place_of(std::uintptr_t address) const {
    std::size_t place = home_of(address);
    while (table_[place].address != address && table_[place].address != 0) {
        place = next_place(place);
    }
    return place;
}

inline block_register::finding block_register::find(const void* address) const {
    if (table_ == nullptr) return {state::unknown, 0, 0};
    const std::size_t place = place_of(reinterpret_cast<std::uintptr_t>(address));
    const entry& found = table_[place];
    if (found.address == 0) return {state::unknown, 0, 0};
    return {found.slot == 0 ? state::live : state::freed, found.serial, place};
}

inline void block_register::unlink(std::uint16_t slot) {
    const freed_slot& left = freed_[slot];
    freed_[left.older].newer = left.newer;
    freed_[left.newer].older = left.older;
}

inline void block_register::add(const void* address, std::uint32_t serial) {
    const auto number = reinterpret_cast<std::uintptr_t>(address);
    entry& place = table_[place_of(number)];
    if (place.address == 0) {
        ++count_;
    } else {
        unlink(place.slot);
        freed_[place.slot].newer = vacant_;
        vacant_ = place.slot;
    }
    place = {number, serial, 0};
}

}  // namespace trv
