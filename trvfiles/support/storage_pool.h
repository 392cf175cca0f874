#pragma once

/// @file
/// Storage that only grows and is addressed by offsets. Stores keep their texts in it.
///
/// Growing moves the content: a pointer is valid until the next pool_reserve(), pool_add_string()
/// or pool_trim(); an offset is valid as long as the pool. The memory is a permanent block of the
/// checked heap (dynamic_storage.h) and counts towards its maximum.
///
/// Threads: one at a time.

#include <trvfiles/export.h>

#include <cstdint>

namespace trv {

struct storage_pool;

/// Creates an empty pool.
///
/// @param initial_size  the bytes that the pool has at first and gains at each growth; at least 1
/// @return the pool, for pool_destroy(); nullptr for a smaller size and, after a report, if there
///         is no memory
TRV_EXPORT storage_pool* pool_create(std::int32_t initial_size);

/// Reserves `bytes`, rounded up to a multiple of 4. They are not initialized.
///
/// A pool that is too small grows by its initial size until the bytes fit.
///
/// @return the offset of the first byte. -1 for a negative size, for nullptr, and if the pool
///         cannot grow; the report then names the step that failed. What the pool has handed out
///         is unchanged then. The memory of the steps before the failed one stays in the pool:
///         later calls use it, and pool_trim() frees it.
TRV_EXPORT std::int32_t pool_reserve(storage_pool* pool, std::int32_t bytes);

/// @return the address of an offset that was handed out; nullptr for a negative offset, for a pool
///         that is nullptr, and after a report for an offset beyond what is in use
TRV_EXPORT void* pool_address(const storage_pool* pool, std::int32_t offset);

/// Stores a copy of a text with its terminator. The text may be in the pool itself.
///
/// @return the offset of the copy; -1 for a text that is nullptr and as pool_reserve()
TRV_EXPORT std::int32_t pool_add_string(storage_pool* pool, const char* text);

/// The bytes handed out so far; 0 for nullptr.
TRV_EXPORT std::int32_t pool_used(const storage_pool* pool);

/// Frees the memory that has not been handed out.
TRV_EXPORT void pool_trim(storage_pool* pool);

/// Frees the pool and its content. nullptr is ignored.
TRV_EXPORT void pool_destroy(storage_pool* pool);

}  // namespace trv
