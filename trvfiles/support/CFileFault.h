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
            /// differs in case only; `value` is the name in that header.
            missingSection,
            /// Bytes that are not text are replaced or dropped. `subject` is the section and the
            /// key; it is empty in an assembly, which has one note for the first of these bytes.
            /// Its `count` is how many replacements there are.
            notText,
            /// An element or an attribute of an assembly that the format does not define is
            /// ignored. `subject` is its name, `parent` the element that has it. In a machine
            /// context, a section or a key; `subject` is the section, or the section and the key
            /// with the section as `parent`.
            /// `expected` is the known name if it differs in case only.
            unknownName,
            /// An element of an assembly that counts once only occurs again and is ignored.
            /// `subject` is its name, `parent` the element that has it.
            repeated,
            /// Components of an assembly beside a "File" are ignored. `subject` is the name of the
            /// component that has the file, `count` their number; the place is that of the "File".
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
            /// The axes of an axis file do not span space. They are read as zeros.
            singular,
            /// An attribute occurs several times in one element of an assembly; the last one
            /// counts. `subject` is the element, `count` how often.
            repeatedAttribute,
            /// A text between the elements of an assembly is ignored. `parent` is the element that
            /// has it, `value` its beginning. The place is that of its end.
            ignoredText,
            /// A reference to a character beyond U+FFFF in an attribute of an assembly is read as
            /// the character of its lower 16 bits. `subject` is the element, `value` the reference.
            cutReference,
        };

        /// What was altered, for programs.
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
        /// What the file has, if the note is about a value.
        std::string value = {};
        /// Empty or 0, as the next two, unless the kind says what they are.
        std::string parent = {};
        std::string expected = {};
        int count = 0;
    };

    /// Why a call has failed, for programs. Numbered as the kinds of notes are.
    enum class Cause : std::int32_t {
        /// The call has not failed, or its status alone says why.
        none,
        /// The system has failed; `systemError` says how.
        system,
        /// The name is not one of a file, or the local code page lacks one of its characters.
        fileName,
        /// The file is longer than the format allows.
        tooLong,
        /// There is no storage for what is to be written, or a stream is bad from the start.
        noStorage,
        /// An assembly is not well-formed XML.
        notWellFormed,
        /// An assembly nests too many elements.
        tooDeep,
        /// An assembly declares an entity.
        entityDeclared,
        /// An assembly has a character that XML does not allow. `subject` is its number: "U+0001".
        invalidCharacter,
        /// The encoding of an assembly is unknown.
        unknownEncoding,
        /// The root element of an assembly is another one. `subject` is its name.
        wrongRoot,
        /// The version of an assembly is not an integer. `subject` is what it is.
        wrongVersion,
        /// The root element of an assembly lacks an element. `subject` is the name of that.
        missingElement,
        /// The "Orientation" of the root component is not complete.
        incompleteOrientation,
        /// A component cannot be written. `subject` is its name.
        notWritable,
        /// A line of an axis file does not have four numbers.
        missingNumbers,
        /// A section of a machine context lacks a key. `subject` is the section and the key.
        missingKey,
    };

    /// Why the call has failed, for programs.
    Cause cause = Cause::none;
    /// What the cause is about, in UTF-8; empty unless the cause says what it is.
    std::string subject;
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

/// The name of a kind of note, as in "not-a-number": for a program that reads it, it is the same in
/// all languages and versions.
///
/// Threads: any.
///
/// @return a constant text; "" for a number without a kind
TRV_EXPORT const char* fileNoteKindName(CFileFault::Note::Kind kind);

/// The name of a cause, as in "not-well-formed", which stays the same like that of a kind of note.
///
/// Threads: any.
///
/// @return a constant text; "" for `none` and for a number without a cause
TRV_EXPORT const char* fileFaultCauseName(CFileFault::Cause cause);
