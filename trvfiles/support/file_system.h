#pragma once

/// @file
/// The small operations on files and directories that the runtime needs.
///
/// A path is a narrow text, in which "/" and "\" both separate; results are written with "\". On
/// POSIX a file whose name holds a "\" cannot be named. A null path acts as an empty one.
///
/// Threads: any for what returns no text. Each function that returns one has a single buffer for
/// the process, which its next call overwrites. The buffers are there from before main() until the
/// process ends.

#include <trvfiles/export.h>

#include <cstddef>
#include <string>

namespace trv {

/// The form of a path that the operating system takes: on POSIX each "\" becomes a "/", on Windows
/// nothing changes. For hosts that open a path which the runtime has returned.
TRV_EXPORT std::string native_path(const char* path);

/// Whether something exists, a directory included. A path with "*" or "?" exists when
/// list_matching() finds an entry.
///
/// @return 1 or 0
TRV_EXPORT int fileExists(const char* path);

/// Whether a directory exists. The second form collapses the path's separators first; what is then
/// longer than 511 characters is none.
TRV_EXPORT bool is_directory(const char* path);
TRV_EXPORT bool is_directory_collapsed(const char* path);

/// Creates one directory. The second form collapses the path's separators first.
///
/// @return 0 when it is made, and also when access is denied; -1 on any other failure: the
///         directory exists, its parent does not, or the collapsed path is longer than 511
///         characters
TRV_EXPORT int make_directory(const char* path);
TRV_EXPORT int make_directory_collapsed(const char* path);

/// Creates every missing directory along a path. What stands before the first separator is a root
/// or a drive and has to exist.
///
/// @return 0 when the path is a directory in the end, as make_directory() sees it; -1 otherwise: a
///         file stands in the way, the path is empty or longer than 511 characters
TRV_EXPORT int make_path(const char* path);

/// Copies a path and turns each run of separators into one "\".
///
/// @param destination  may be the source itself
/// @param size         bytes that it holds; at most size - 1 characters and a terminator are
///                     written, nothing for 0
TRV_EXPORT void collapse_separators(const char* source, char* destination, std::size_t size);

/// Whether a name matches a pattern in which "*" stands for any run of characters and "?" for one.
/// A null pattern or name matches.
///
/// @param case_sensitive  otherwise ASCII letters match in either case
/// @return 1 or 0
TRV_EXPORT int wildcard_match(const char* pattern, const char* name, bool case_sensitive);

/// The entries of a directory that match a pattern, with a cursor at the first one.
struct file_listing;

/// Lists the files and directories that match a path whose last part is a pattern; upper and lower
/// case match. Hidden entries count, "." and ".." do not. The order is that of the bytes.
///
/// @param pattern  up to its last separator, or a drive's ":", the directory, which stands before
///                 each result exactly as typed; without one the current directory, and results
///                 are bare names. More than 511 characters match nothing.
/// @return the listing, for listing_free(), empty where the directory cannot be read; null, after a
///         report, where there is no memory
TRV_EXPORT file_listing* list_matching(const char* pattern);

/// The number of entries; 0 for null.
TRV_EXPORT int listing_count(const file_listing* listing);

/// The next entry, or null behind the last one. It lives as long as the listing.
TRV_EXPORT const char* listing_next(file_listing* listing);

/// Frees a listing with its entries. Null is left alone.
TRV_EXPORT void listing_free(file_listing* listing);

/// Writes the path of the current directory, with "\" on every system.
///
/// @param buffer  receives the path and a terminator; "" if they do not fit
/// @param size    of the buffer, in bytes
/// @return the part of the buffer behind the last "\", "" in a root; null where the path does not
///         fit or holds no "\"
TRV_EXPORT const char* current_directory_name(char* buffer, int size);

/// The same with a buffer of 128 bytes.
TRV_EXPORT const char* current_directory_name(char* buffer);

/// The directory that the product is installed in. The first of these that there is:
///
/// 1. the environment variable TRVHOME, unless empty,
/// 2. the environment variable TRVHOME_LS, unless empty,
/// 3. X, when the process's program file is X/exe/msw/NAME ("exe" and "msw" in either case) in
///    fewer than 512 characters; written with "/".
///
/// @param publish  whether TRVHOME is set to a root that did not come from it
/// @return the root as it was found; null where there is none. Overwritten by the next call.
TRV_EXPORT const char* install_root(bool publish);

/// A text that two paths have in common exactly when they name the same directory.
///
/// @return three groups of eight upper-case hexadecimal digits, joined by "-": the volume, and the
///         two halves of the directory's number on it; "" for what is no directory; null where
///         nothing can be opened. Overwritten by the next call.
TRV_EXPORT const char* directory_identity(const char* path);

/// Walks a list of directories, separated by ";" or ",", with one cursor for the process.
///
/// list_begin() copies the list, which may be the current element, and drops the one before it.
/// list_next_element() returns the next element without the blanks around it, or null behind the
/// last one; what is all blank is passed over. The element is overwritten by the next call.
/// list_end() drops the list.
TRV_EXPORT void list_begin(const char* list);
TRV_EXPORT const char* list_next_element();
TRV_EXPORT void list_end();

}  // namespace trv
