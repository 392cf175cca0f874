#pragma once

/// @file
/// Why a file was not read or written, and what reading it has altered.

#include <trvfiles/export.h>

#include <cstdint>
#include <string>
#include <vector>

/// What a call that reads or writes a file reports beyond its status.
///
/// A caller that wants to know passes a pointer to one, which the call does not keep. Without it
/// nothing is collected. The call empties the structure first. `reason` is empty after a success
/// and a text after a failure; `notes` may hold entries after both. Writing an axis file is the
/// exception: it succeeds also if the file is not written to its end, and `reason` then has the
/// failure. After a call that throws, the structure may hold a part of its content.
///
/// Texts are in UTF-8, in English, and human-readable: one line without a full stop, which does not
/// name the file. What they quote from the file is in quotes, or in "<" and ">" if it is an
/// element, is cut off after 40 bytes, and may hold any character.
///
/// The structure is part of a host's own code: its fields, their order and the numbers of the kinds
/// change only together with the version of the library that a host needs at run time.
///
/// Threads: a plain value; const operations may run at once.
struct CFileFault {
    /// Something that was accepted, but is not in the record as it is in the file.
    struct Note {
        /// What was altered. The values are numbered from 0 in this order, and keep their numbers:
        /// later versions add values at the end.
        enum class Kind : std::int32_t {
            /// A component of an assembly is left out with all that is below it, because its
            /// "Orientation" is not complete. `subject` is the name of the component.
            leftOut,
            /// A value that is not a number is replaced by another number, or ignored. `subject` is
            /// the element, as in "Translation", or the section and the key, as in
            /// "machine.proximity".
            notANumber,
            /// The "enabled" of a component is neither "0" nor "1" and is read as "0". `subject` is
            /// the name of the component.
            notAFlag,
            /// A section that each written machine context has is missing, or has no lines.
            /// `subject` is its name. The line is that of its header, or of a header whose name
            /// differs in case only.
            missingSection,
            /// Bytes that are not text are replaced or dropped. `subject` is the section and the
            /// key; it is empty in an assembly, which has one note for the first of these bytes.
            notText,
            /// An element or an attribute of an assembly that the format does not define is
            /// ignored. `subject` is its name. In a machine context, a key that differs from a
            /// known one in case only; `subject` is the section and the known key.
            unknownName,
            /// An element of an assembly that counts once only occurs again and is ignored.
            /// `subject` is its name.
            repeated,
            /// Components of an assembly beside a "File" are ignored. `subject` is the name of the
            /// component that has the file; the place is that of the "File".
            hiddenByFile,
            /// The matrix of an axis file has three rows before the next block, whose first row is
            /// read as the fourth. `subject` is empty, as for all notes on an axis file.
            missingRow,
            /// The fourth row of an axis file is not 0 0 0 1. Its last number is replaced.
            notAffine,
            /// The axes of an axis file are not orthonormal. They are read as the inverse of the
            /// lines, which differs from what was written.
            notOrthonormal,
            /// A line of tags in an axis file is not line 10 and is ignored.
            misplacedTags,
        };

        Kind kind = Kind::notText;
        /// The line of the file, counted from 1; 0 if the note is about no line.
        int line = 0;
        /// The column in the line, counted from 1 in UTF-16 units; 0 if it is not known. For an
        /// element of an assembly it is that of the ">" or "/>" which ends the start tag.
        int column = 0;
        std::string subject;
        /// What was altered and what the record holds instead.
        std::string text;
        /// The attribute of the element of an assembly to which the note refers; empty if it refers
        /// to the whole element, and in other files.
        std::string attribute = {};
    };

    /// Why the call has failed; empty if it has not.
    std::string reason;
    /// The line of the file to which the reason refers, counted from 1; 0 if it is not known.
    int line = 0;
    /// The column in the line, counted from 1 in UTF-16 units; 0 if it is not known.
    int column = 0;
    /// The system's number of the failure, an `errno` value; 0 if the system has not failed.
    int systemError = 0;
    /// In the order in which the reader finds them. Their number is limited by the length of the
    /// file alone.
    std::vector<Note> notes;
};

/// The name of a kind of note, as in "leftOut": for a program that reads it, it is the same in all
/// languages and versions.
///
/// Threads: any.
///
/// @return a constant text; "" for a number that is no kind
TRV_EXPORT const char* fileNoteKindName(CFileFault::Note::Kind kind);
