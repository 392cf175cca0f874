#pragma once

/// @file
/// The notes about a start tag that Qt's parser accepts and alters. The DOM no longer shows what it
/// has altered.
///
/// Threads: any.

#include <trvfiles/assembly/assembly_notes.h>

#include <QString>

#include <vector>

namespace trv {

/// Adds a note for each attribute that occurs several times, of which the last one counts, and for
/// each attribute with a reference that the parser cuts to 16 bits.
///
/// @param tag    from "<" to ">"; one that is malformed is left to the parser
/// @param place  that of the ">" or "/>"
void addTagNotes(const QString& tag, ElementPlace place, std::vector<CFileFault::Note>& notes);

}  // namespace trv
