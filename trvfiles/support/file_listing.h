#pragma once

/// @file
/// Patterns with "*" and "?", and the files and directories that match one.
///
/// Threads: any for wildcard_match(). Listings are blocks of the checked heap: one thread at a
/// time.

#include <trvfiles/export.h>

namespace trv {

/// Whether a name matches a pattern in which "*" matches any run of characters and "?" one
/// character. A pattern or a name that is nullptr matches.
///
/// @param case_sensitive  if not, ASCII letters match in either case
/// @return 1 or 0
TRV_EXPORT int wildcard_match(const char* pattern, const char* name, bool case_sensitive);

/// The entries of a directory that match a pattern, with a cursor at the first one.
struct file_listing;

/// Lists the files and directories that match a path whose last part is a pattern; upper and lower
/// case match. Hidden entries count, "." and ".." do not. The order is that of the bytes.
///
/// @param pattern  The part up to the last separator, or up to a drive's ":", is the directory. It
///                 precedes each result exactly as typed. Without it the current directory is
///                 listed, and results are bare names. A pattern of more than 511 characters
///                 matches nothing.
/// @return the listing, for listing_free(); it is empty if the directory cannot be read. nullptr,
///         after a report, if there is no memory
TRV_EXPORT file_listing* list_matching(const char* pattern);

/// The number of entries; 0 for nullptr.
TRV_EXPORT int listing_count(const file_listing* listing);

/// The next entry, or nullptr after the last one. It is valid as long as the listing.
TRV_EXPORT const char* listing_next(file_listing* listing);

/// Frees a listing with its entries. nullptr is ignored.
TRV_EXPORT void listing_free(file_listing* listing);

}  // namespace trv
