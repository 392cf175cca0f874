#pragma once

/// @file
/// The runtime's checked heap, and on top of it the pools in which a store keeps its texts.
///
/// Each block is permanent ("data base") or temporary and has a serial number. A register of the
/// live blocks and of the last 4 096 freed addresses tells a double free and a foreign pointer from
/// a block, without ever reading memory that is not the heap's own. Exhaustion is reported through
/// the error channel, misuse through the fatal one.
///
/// Before each block stands its header of 16 bytes: the size (64 bits), the tag and the serial (32
/// bits each).
///
/// Threads: one at a time.

#include <trvfiles/export.h>

#include <cstddef>
#include <cstdint>

namespace trv {

inline constexpr std::uint32_t permanent_tag = 0x75A5A5A5;
inline constexpr std::uint32_t temporary_tag = 0x7C0DCAB4;
inline constexpr std::uint32_t freed_tag = 0x7D0ECBB5;

/// Allocates a block, aligned to 16 bytes. A size of 0 gives a block of no bytes.
///
/// @param tag  the kind of block; permanent blocks count towards the maximum
/// @return the block, for _Wfree(); or null, after a report, where there is no memory, or where a
///         permanent block of 1 025 bytes or more would reach the maximum
TRV_EXPORT void* _Wmalloc(std::uint32_t tag, std::size_t size);

/// Changes the size of a block; it keeps its serial and the bytes that both sizes have.
///
/// @param tag    the tag the block was allocated with
/// @param block  null allocates a new one
/// @return the block, perhaps at a new address; or null, and then `block` is as it was: after a
///         report where there is no memory; silently where a permanent block that grows to 1 025
///         bytes or more would reach the maximum; after a fatal report where the block has another
///         tag, has been freed, or is none
TRV_EXPORT void* _Wrealloc(std::uint32_t tag, void* block, std::size_t size);

/// Frees a block of either kind.
///
/// @return 0, also for null; -1 after a fatal report where the block has been freed or is none
TRV_EXPORT int _Wfree(void* block);

TRV_EXPORT void* allocate_permanent(std::size_t size);
TRV_EXPORT void* resize_permanent(void* block, std::size_t size);
TRV_EXPORT void* allocate_temporary(std::size_t size);
TRV_EXPORT void* resize_temporary(void* block, std::size_t size);

/// Sets the number of bytes that permanent blocks stay below; 4 294 967 295 at the start.
///
/// @return its argument
TRV_EXPORT std::uint64_t set_storage_maximum(std::uint64_t bytes);

/// Whether the permanent bytes in use and `extra` more stay below the maximum.
TRV_EXPORT bool storage_fits(std::uint64_t extra);

/// Writes "data base memory : 10/15": the permanent bytes and all bytes in use.
///
/// @param buffer  nullptr takes nothing
/// @param size    of the buffer: never more bytes are written, the terminator included; 64 bytes
///                hold every text, 0 takes nothing
TRV_EXPORT void storage_report(char* buffer, std::size_t size);

/// Storage that only grows and is addressed by offsets: growing moves what it holds, so a pointer
/// is valid until the next pool_reserve(), pool_add_string() or pool_trim(); an offset stays.
struct storage_pool;

/// @param initial_size  the bytes it has at first and gains at each growth; at least 1
/// @return the pool, for pool_destroy(); or null, after a report where there is no memory
TRV_EXPORT storage_pool* pool_create(std::int32_t initial_size);

/// Hands out room for `bytes`, rounded up to a multiple of 4. The bytes are not set.
///
/// A pool that is too small grows by its initial size until the bytes fit.
///
/// @return the offset; -1 for a negative size, for a null pool, and if the pool cannot grow, which
///         is reported with the step that failed. What the pool has handed out is unchanged then.
///         The room of the steps before the failed one stays in the pool: later calls use it, and
///         pool_trim() gives it back.
TRV_EXPORT std::int32_t pool_reserve(storage_pool* pool, std::int32_t bytes);

/// @return the address of an offset that was handed out; null for a negative one or no pool, and
///         after a report for one beyond what is in use
TRV_EXPORT void* pool_address(const storage_pool* pool, std::int32_t offset);

/// Stores a copy of a text with its terminator. The text may lie in the pool itself.
///
/// @return its offset; -1 for a null text, or as pool_reserve()
TRV_EXPORT std::int32_t pool_add_string(storage_pool* pool, const char* text);

/// The bytes handed out so far; 0 for no pool.
TRV_EXPORT std::int32_t pool_used(const storage_pool* pool);

/// Gives back what has not been handed out.
TRV_EXPORT void pool_trim(storage_pool* pool);

/// Frees the pool and all that it holds. Null is left alone.
TRV_EXPORT void pool_destroy(storage_pool* pool);

}  // namespace trv
