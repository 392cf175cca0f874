#pragma once

/// @file
/// Where in a file the cause of a note or of a failure begins. Readers know the line, and of an
/// assembly the end of a tag; the text of the file gives the rest.

#include <cli/file_kind.h>
#include <cli/source_text.h>
#include <trvfiles/support/CFileFault.h>

#include <QString>

namespace trv::cli {

/// The lines of a kind of file.
SourceText sourceOf(const QString& name, FileKind kind);

/// The place of a note: the value of an attribute or of a key, the name of an attribute that is not
/// known, the "<" of an element, the first character of a line.
Place placeOfNote(const SourceText& source, FileKind kind, const CFileFault::Note& note);

/// The place of a failure: the "<" of an element, the word that is not a number, the header of a
/// section. The place that the parser of XML names is kept.
Place placeOfFailure(const SourceText& source, FileKind kind, Place place);

/// The place of the value of a key in a machine context; the key that counts is the last one in the
/// last section of its name.
Place placeOfValue(const SourceText& source, const QString& section, const QString& key);

}  // namespace trv::cli
