#pragma once

/// @file
/// The runtime's checked heap.
///
/// Each block is permanent ("data base") or temporary and has a serial number. A register of the
/// live blocks and of the last 4 096 freed addresses detects a double free and a foreign pointer
/// and never reads memory that the heap does not own. Exhaustion is reported through the error
/// channel, misuse through the fatal one.
///
/// A header of 16 bytes precedes each block: the size (64 bits), the tag and the serial (32 bits
/// each).
///
/// Threads: one at a time.

#include <trvfiles/export.h>
#include <trvfiles/support/storage_pool.h>

#include <cstddef>
#include <cstdint>

namespace trv {

/// The tags in the headers of permanent, temporary and freed blocks.
inline constexpr std::uint32_t permanent_tag = 0x75A5A5A5;
inline constexpr std::uint32_t temporary_tag = 0x7C0DCAB4;
inline constexpr std::uint32_t freed_tag = 0x7D0ECBB5;

/// Allocates a block, aligned to 16 bytes. A size of 0 gives a block of no bytes.
///
/// @param tag  the kind of block; permanent blocks count towards the maximum
/// @return the block, for _Wfree(); nullptr, after a report, if there is no memory or if a
///         permanent block of 1 025 bytes or more would reach the maximum
TRV_EXPORT void* _Wmalloc(std::uint32_t tag, std::size_t size);

/// Changes the size of a block; it keeps its serial and the bytes that both sizes have.
///
/// @param tag    the tag the block was allocated with
/// @param block  nullptr allocates a new one
/// @return the block, perhaps at a new address. nullptr leaves `block` as it was: after a report if
///         there is no memory; without a report if a permanent block that grows to 1 025 bytes or
///         more would reach the maximum; after a fatal report if the block has another tag, has
///         been freed, or is not a block
TRV_EXPORT void* _Wrealloc(std::uint32_t tag, void* block, std::size_t size);

/// Frees a block of either kind.
///
/// @return 0, also for nullptr; -1 after a fatal report if the block has been freed or is not one
TRV_EXPORT int _Wfree(void* block);

/// _Wmalloc() and _Wrealloc() with the tag that the name says.
TRV_EXPORT void* allocate_permanent(std::size_t size);
TRV_EXPORT void* resize_permanent(void* block, std::size_t size);
TRV_EXPORT void* allocate_temporary(std::size_t size);
TRV_EXPORT void* resize_temporary(void* block, std::size_t size);

/// Sets the number of bytes that permanent blocks stay below. It is 4 294 967 295 at the start.
///
/// @return its argument
TRV_EXPORT std::uint64_t set_storage_maximum(std::uint64_t bytes);

/// Whether the permanent bytes in use and `extra` more stay below the maximum.
TRV_EXPORT bool storage_fits(std::uint64_t extra);

/// Writes "data base memory : 10/15": the permanent bytes and all bytes in use.
///
/// @param buffer  if it is nullptr, nothing is written
/// @param size    of the buffer, in bytes: no more are written, the terminator included. 64 bytes
///                are enough for every text; with 0 nothing is written
TRV_EXPORT void storage_report(char* buffer, std::size_t size);

}  // namespace trv
