#pragma once

/// @file
/// The small operations on files and directories that the runtime needs. Patterns and
/// listings are in file_listing.h.
///
/// A path is narrow text in which "/" and "\" both separate. Results are written with "\". On POSIX
/// a file whose name contains "\" cannot be named. A path that is nullptr acts as an empty one.
///
/// Threads: any for what returns no text. Each function that returns a text has one buffer for the
/// process, which its next call overwrites. The buffers exist from before main() until the process
/// ends.

#include <trvfiles/export.h>
#include <trvfiles/support/file_listing.h>

#include <cstddef>
#include <string>

namespace trv {

/// The form of a path that the operating system takes: on POSIX each "\" becomes a "/", on Windows
/// nothing changes. For hosts that open a path which the runtime has returned.
TRV_EXPORT std::string native_path(const char* path);

/// Whether something exists, a directory included. A path with "*" or "?" exists if
/// list_matching() finds an entry.
///
/// @return 1 or 0
TRV_EXPORT int fileExists(const char* path);

/// Whether a directory exists. The second form collapses the path's separators first; if the result
/// is longer than 511 characters, it names no directory.
TRV_EXPORT bool is_directory(const char* path);
TRV_EXPORT bool is_directory_collapsed(const char* path);

/// Creates one directory. The second form collapses the path's separators first.
///
/// @return 0 if the directory is created, and also if access is denied; -1 on any other failure:
///         the directory exists, its parent does not, or the collapsed path is longer than 511
///         characters
TRV_EXPORT int make_directory(const char* path);
TRV_EXPORT int make_directory_collapsed(const char* path);

/// Creates every missing directory along a path. The part before the first separator is a root or a
/// drive and has to exist.
///
/// @return 0 if the path is a directory in the end, by the rules of make_directory(); -1 otherwise:
///         a part of it is a file, the path is empty or longer than 511 characters
TRV_EXPORT int make_path(const char* path);

/// Copies a path and turns each run of separators into one "\".
///
/// @param destination  may be the source itself
/// @param size         of the destination, in bytes; at most size - 1 characters and a terminator
///                     are written, nothing if it is 0
TRV_EXPORT void collapse_separators(const char* source, char* destination, std::size_t size);

/// Writes the path of the current directory, with "\" on every system.
///
/// @param buffer  receives the path and a terminator; "" if they do not fit
/// @param size    of the buffer, in bytes
/// @return the part of the buffer after the last "\", "" in a root; nullptr if the path does not
///         fit or contains no "\"
TRV_EXPORT const char* current_directory_name(char* buffer, int size);

/// The same with a buffer of 128 bytes.
TRV_EXPORT const char* current_directory_name(char* buffer);

/// A text that two paths have in common exactly if they name the same directory.
///
/// @return three groups of eight upper-case hexadecimal digits, joined by "-": the volume, and the
///         two halves of the directory's number on it; "" if the path is not a directory; nullptr
///         if nothing can be opened. Overwritten by the next call.
TRV_EXPORT const char* directory_identity(const char* path);

/// The directory that the product is installed in: the first of these that exists.
///
/// 1. the environment variable TRVHOME, unless empty,
/// 2. the environment variable TRVHOME_LS, unless empty,
/// 3. X, if the process's program file is X/exe/msw/NAME ("exe" and "msw" in either case) in fewer
///    than 512 characters; written with "/".
///
/// @param publish  whether TRVHOME is set to a root that did not come from it
/// @return the root as it was found; nullptr if there is none. Overwritten by the next call.
TRV_EXPORT const char* install_root(bool publish);

/// A walk over a list of directories, with one cursor for the process.
///
/// Copies a list whose elements are separated by ";" or "," and puts the cursor before its first
/// element. The list before it is dropped. The argument may be the current element.
TRV_EXPORT void list_begin(const char* list);

/// The next element without the blanks around it; elements that are all blank are ignored.
///
/// @return nullptr after the last element. Overwritten by the next call.
TRV_EXPORT const char* list_next_element();

/// Drops the list.
TRV_EXPORT void list_end();

}  // namespace trv
