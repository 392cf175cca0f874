#include <trvfiles/environment/name_hash.h>
#include <trvfiles/environment/text_pool.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <new>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

constexpr std::int32_t initial_pool_size = 1024;
// The pool grows in steps of its initial size, and an offset is a std::int32_t.
constexpr std::size_t max_pool_size = INT32_MAX / initial_pool_size * initial_pool_size;
// Documented for describe_origin(). It bounds the search for a terminator.
constexpr std::size_t max_distance_from_start = 1024;

static_assert(sizeof(text_record) == 12 && alignof(text_record) == 4);

// Records are at multiples of their alignment, because all sizes that are taken from the pool are.
// A text is directly after its record, so that record() needs no table.
constexpr std::size_t rounded(std::size_t bytes) {
    return (bytes + alignof(text_record) - 1) / alignof(text_record) * alignof(text_record);
}

// Offsets only grow, so the lists are sorted without sorting.
bool contains(const stored_vector<std::int32_t>& offsets, std::int32_t offset) {
    return std::binary_search(offsets.begin(), offsets.end(), offset);
}

}  // namespace

text_pool::text_pool() : pool_(pool_create(initial_pool_size)) {
    if (pool_ == nullptr) throw std::bad_alloc();
}

void text_pool::reserve_bytes(std::size_t bytes) {
    const auto used = static_cast<std::size_t>(used_);
    const auto reserved = static_cast<std::size_t>(reserved_);
    if (bytes <= reserved - used) return;
    if (bytes > max_pool_size - used) throw std::bad_alloc();
    const std::size_t needed = used + bytes - reserved;
    // Growing by half makes a long load linear. Near the storage maximum the pool takes up to half
    // of what is left: growing by what each text needs would make a load quadratic there.
    std::size_t step = std::min(std::max(needed, reserved / 2), max_pool_size - reserved);
    while (step > needed && !storage_fits(2 * step + initial_pool_size))
        step = std::max(needed, step / 2);
    const std::int32_t offset = pool_reserve(pool_.get(), static_cast<std::int32_t>(step));
    reserved_ = pool_used(pool_.get());
    // A pool that cannot grow far enough may have grown a part of the way, which moves the texts.
    if (reserved_ > 0) base_ = static_cast<char*>(pool_address(pool_.get(), 0));
    if (offset < 0) throw std::bad_alloc();
}

std::int32_t text_pool::take(std::size_t bytes) noexcept {
    const std::int32_t offset = used_;
    used_ += static_cast<std::int32_t>(rounded(bytes));
    return offset;
}

std::int32_t text_pool::put(std::string_view text) noexcept {
    const std::int32_t offset = take(text.size() + 1);
    std::memcpy(at(offset), text.data(), text.size());
    at(offset)[text.size()] = '\0';
    return offset;
}

void text_pool::reserve_texts(std::size_t count, std::size_t length) {
    constexpr std::size_t max_bytes_around_text = sizeof(text_record) + alignof(text_record);
    reserve_room(texts_, count);
    reserve_bytes(count * max_bytes_around_text + length);
}

std::int32_t text_pool::add_text(const text_record& record, std::string_view text) noexcept {
    // No allocation from here on: reserve_texts() has made room for the record, the text and its
    // place in the list.
    const std::int32_t header = take(sizeof record);
    std::memcpy(at(header), &record, sizeof record);
    const std::int32_t offset = put(text);
    texts_.push_back(offset);
    return offset;
}

std::int32_t text_pool::add_file_name(std::string_view name) {
    const std::uint32_t hash = hash_name(name);
    const std::uint32_t known = file_name_index_.first(
        hash, [&](std::uint32_t place) { return at(file_names_[place]) == name; });
    if (known != name_index::none) return file_names_[known];

    const auto place = static_cast<std::uint32_t>(file_names_.size());
    reserve_room(file_names_);
    file_name_index_.reserve(place);
    reserve_bytes(rounded(name.size() + 1));
    const std::int32_t offset = put(name);
    file_names_.push_back(offset);
    file_name_index_.put(place, hash);
    return offset;
}

bool text_pool::is_file_name(std::int32_t offset) const {
    return contains(file_names_, offset);
}

bool text_pool::is_text(std::int32_t offset) const {
    return contains(texts_, offset);
}

const text_record& text_pool::record(std::int32_t text) const {
    return *reinterpret_cast<const text_record*>(at(text) - sizeof(text_record));
}

text_record& text_pool::record(std::int32_t text) {
    return *reinterpret_cast<text_record*>(at(text) - sizeof(text_record));
}

bool text_pool::holds(const char* pointer) const {
    // std::less<> orders pointers into different objects, for which "<" is unspecified.
    const std::less<> before;
    return pointer != nullptr && used_ != 0 && !before(pointer, base_) &&
           before(pointer, base_ + used_);
}

std::int32_t text_pool::text_around(const char* pointer) const {
    if (!holds(pointer)) return none;
    const auto offset = static_cast<std::int32_t>(pointer - base_);
    const auto behind = std::upper_bound(texts_.begin(), texts_.end(), offset);
    if (behind == texts_.begin()) return none;
    const std::int32_t start = *(behind - 1);
    const auto distance = static_cast<std::size_t>(offset - start);
    if (distance > max_distance_from_start) return none;
    // After a terminator the pointer is in the padding or in the next record.
    return std::memchr(at(start), '\0', distance) == nullptr ? start : none;
}

std::string text_pool::origin(std::int32_t text) const {
    const text_record& about = record(text);
    if (about.file == none) return "set by program";
    return std::string("from '") + at(about.file) + "' line " + std::to_string(about.line);
}

}  // namespace trv
