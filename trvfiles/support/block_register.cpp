#include <trvfiles/support/block_register.h>

#include <cstdlib>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

constexpr unsigned first_size_bits = 10;

}  // namespace

bool block_register::grow() {
    const std::size_t new_size = size_ == 0 ? std::size_t{1} << first_size_bits : size_ * 2;
    auto* const new_table = static_cast<entry*>(std::calloc(new_size, sizeof(entry)));
    if (new_table == nullptr) return false;
    const entry* const old_end = table_ + size_;
    entry* const old_table = table_;
    shift_ = size_ == 0 ? 64 - first_size_bits : shift_ - 1;
    table_ = new_table;
    size_ = new_size;
    for (const entry* kept = old_table; kept != old_end; ++kept) {
        if (kept->address != 0) table_[place_of(kept->address)] = *kept;
    }
    std::free(old_table);
    return true;
}

void block_register::retire(const finding& found) {
    entry& retired = table_[found.place];
    const std::uintptr_t address = retired.address;
    if (vacant_ != 0) {
        retired.slot = vacant_;
        vacant_ = freed_[vacant_].newer;
    } else if (slots_used_ < remembered_addresses) {
        retired.slot = ++slots_used_;
    }
    std::uint16_t slot = retired.slot;
    if (slot == 0) {
        // All slots are in use: take that of the oldest freed address.
        slot = freed_[0].newer;
        retired.slot = slot;
        unlink(slot);
        erase(freed_[slot].address);
    }
    const std::uint16_t latest = freed_[0].older;
    freed_[slot] = {address, latest, 0};
    freed_[latest].newer = slot;
    freed_[0].older = slot;
}

// Deletion without tombstones. Invariant: no empty place lies between an entry's home and its
// place. So each entry after the hole whose home is not between the hole and itself moves into the
// hole, until an empty place ends the run.
void block_register::erase(std::uintptr_t address) {
    std::size_t hole = place_of(address);
    for (std::size_t next = next_place(hole); table_[next].address != 0; next = next_place(next)) {
        const std::size_t from_home = (next - home_of(table_[next].address)) & (size_ - 1);
        const std::size_t from_hole = (next - hole) & (size_ - 1);
        if (from_home < from_hole) continue;
        table_[hole] = table_[next];
        hole = next;
    }
    table_[hole] = {};
    --count_;
}

}  // namespace trv
