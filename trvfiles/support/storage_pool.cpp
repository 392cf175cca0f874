#include <trvfiles/support/diagnostics.h>
#include <trvfiles/support/dynamic_storage.h>
#include <trvfiles/support/permanent_block.h>
#include <trvfiles/support/storage_pool.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <string>

namespace trv {

// In a permanent block of its own; the data is in another one.
struct storage_pool {
    char* data;
    std::int32_t used;
    std::int32_t capacity;
    std::int32_t increment;
};

namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

constexpr std::int64_t alignment = 4;

std::int64_t round_up(std::int64_t value, std::int64_t step) {
    return (value + step - 1) / step * step;
}

void report_no_growth(const storage_pool& pool) {
    const std::int64_t grown = std::int64_t{pool.capacity} + pool.increment;
    const std::string text = "Dynamic storage: no more memory, could not expand from " +
                             std::to_string(pool.capacity) + " to " + std::to_string(grown) +
                             " bytes\n";
    report_error(text.c_str());
}

// The heap reports only the failure of a single increment. More of them are an attempt, after which
// a smaller one follows.
bool grow_by(storage_pool& pool, std::int64_t increments) {
    const std::int64_t capacity = pool.capacity + increments * pool.increment;
    if (capacity > INT32_MAX) return false;
    const auto resize = increments == 1 ? resize_permanent : try_resize_permanent;
    void* const data = resize(pool.data, static_cast<std::size_t>(capacity));
    if (data == nullptr) return false;
    pool.data = static_cast<char*>(data);
    pool.capacity = static_cast<std::int32_t>(capacity);
    return true;
}

// Grows by as many increments as `needed` takes, or by as many of them as succeed.
//
// Tries all of them at once, and half as many after each failure, down to the one increment that
// fails. The pool ends as if it had grown by one increment after the other, which would take 2^31
// attempts for increments of one byte.
bool grow(storage_pool& pool, std::int64_t needed) {
    std::int64_t missing = (needed - pool.capacity + pool.increment - 1) / pool.increment;
    std::int64_t attempt = missing;
    while (missing > 0) {
        // Offsets are 32 bits.
        const std::int64_t possible = (INT32_MAX - pool.capacity) / pool.increment;
        attempt = std::min({attempt, missing, std::max<std::int64_t>(possible, 1)});
        if (grow_by(pool, attempt)) {
            missing -= attempt;
        } else if (attempt == 1) {
            return false;
        } else {
            attempt = (attempt + 1) / 2;
        }
    }
    return true;
}

// The offset of an address within what the pool has handed out; -1 for any other address.
std::int64_t offset_of(const storage_pool& pool, const char* address) {
    const auto number = reinterpret_cast<std::uintptr_t>(address);
    const auto begin = reinterpret_cast<std::uintptr_t>(pool.data);
    const bool is_inside =
        number >= begin && number - begin < static_cast<std::uintptr_t>(pool.used);
    return is_inside ? static_cast<std::int64_t>(number - begin) : -1;
}

std::int32_t reserve(storage_pool& pool, std::int64_t bytes) {
    const std::int64_t needed = pool.used + round_up(bytes, alignment);
    if (needed > pool.capacity && !grow(pool, needed)) {
        report_no_growth(pool);
        return -1;
    }
    const std::int32_t offset = pool.used;
    pool.used = static_cast<std::int32_t>(needed);
    return offset;
}

}  // namespace

storage_pool* pool_create(std::int32_t initial_size) {
    if (initial_size <= 0) return nullptr;
    permanent_block memory(allocate_permanent(sizeof(storage_pool)));
    if (memory == nullptr) return nullptr;
    void* const data = allocate_permanent(static_cast<std::size_t>(initial_size));
    if (data == nullptr) {
        memory.reset();
        report_error("Dynamic storage: no more memory\n");
        return nullptr;
    }
    return new (memory.release())
        storage_pool{static_cast<char*>(data), 0, initial_size, initial_size};
}

std::int32_t pool_reserve(storage_pool* pool, std::int32_t bytes) {
    return pool == nullptr || bytes < 0 ? -1 : reserve(*pool, bytes);
}

void* pool_address(const storage_pool* pool, std::int32_t offset) {
    if (pool == nullptr || offset < 0) return nullptr;
    if (offset < pool->used) return pool->data + offset;
    report_error("Dynamic storage: trying to access unallocated memory\n");
    return nullptr;
}

std::int32_t pool_add_string(storage_pool* pool, const char* text) {
    if (pool == nullptr || text == nullptr) return -1;
    const std::size_t bytes = std::strlen(text) + 1;
    const std::int64_t source = offset_of(*pool, text);
    const std::int32_t offset = reserve(*pool, static_cast<std::int64_t>(bytes));
    if (offset < 0) return offset;
    std::memmove(pool->data + offset, source < 0 ? text : pool->data + source, bytes);
    return offset;
}

std::int32_t pool_used(const storage_pool* pool) {
    return pool == nullptr ? 0 : pool->used;
}

void pool_trim(storage_pool* pool) {
    if (pool == nullptr) return;
    void* const data = resize_permanent(pool->data, static_cast<std::size_t>(pool->used));
    if (data == nullptr) return;
    pool->data = static_cast<char*>(data);
    pool->capacity = pool->used;
}

void pool_destroy(storage_pool* pool) {
    if (pool == nullptr) return;
    _Wfree(pool->data);
    _Wfree(pool);
}

}  // namespace trv
