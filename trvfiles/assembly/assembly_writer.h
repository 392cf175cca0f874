#pragma once

/// @file
/// From the record of an assembly to the bytes of its file.
///
/// The text is that of QDomDocument::toString(3) for the same elements, with the attributes in the
/// order of the format.

class CTrvAssemblyData;
struct CFileFault;

namespace trv {

class BlockWriter;

/// Whether a file with this record can be read back.
///
/// @param fault  takes the reason if not
/// @return false if a component has neither a geometry file nor children, if the document would
///         nest more than maxNesting elements, or if a text contains U+FFFE or U+FFFF
bool isWritable(const CTrvAssemblyData& data, CFileFault* fault = nullptr);

/// Writes the bytes of a file.
///
/// REQUIRES: isWritable().
///
/// @return whether all blocks are written; no other one follows one that is not
bool writeAssembly(const CTrvAssemblyData& data, BlockWriter& out);

}  // namespace trv
