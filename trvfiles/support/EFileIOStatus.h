#pragma once

/// @file
/// The result of every read and write of a project file.

#include <trvfiles/export.h>

#include <cstdint>

/// What became of a read or a write. No operation returns 0: test for eFileIOSuccess, every other
/// value is a failure. The numbers are fixed.
enum EFileIOStatus : std::int32_t {
    /// The read or the write completed.
    eFileIOSuccess = 1,
    /// The file could not be opened, or a machine context could not be parsed at all or saved.
    eFileIOOpenError = 2,
    /// An assembly file was opened, but not all of its text could be written.
    eFileIOShortWrite = 3,
    /// Something that the file needs is missing or malformed, or the record cannot be written.
    eFileIOContentError = 4,
    /// The file holds something else: a wrong root element, or a root component that is broken.
    eFileIOStructureError = 5
};

/// What a status means, human-readable: one line of English without a full stop. A CFileFault has
/// the reason of one failure, with its place.
///
/// Threads: any.
///
/// @param status  any number; another one has a text of its own
/// @return a constant text, never nullptr
TRV_EXPORT const char* fileIOStatusText(EFileIOStatus status);
