#pragma once

/// @file
/// Notes on the sections and the keys of a machine context file that the format does not define.
///
/// Threads: any.

#include <trvfiles/support/CFileFault.h>

#include <vector>

class CSectionedFile;

namespace trv {

/// Adds a note for each section that is not known, and for each key of a known section that is not.
/// Left out is what another note is about: a key or a section in another case that the reader
/// misses.
void addUnknownNames(const CSectionedFile& file, std::vector<CFileFault::Note>& notes);

}  // namespace trv
