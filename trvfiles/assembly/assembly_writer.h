#pragma once

/// @file
/// From an assembly record to its DOM document.

#include <trvfiles/assembly/dom_tree.h>

class CTrvAssemblyData;
struct CFileFault;

namespace trv {

/// Builds the document of an assembly file.
///
/// @param tree  an empty document, which takes the elements; of no use after a failure
/// @param fault  takes the reason of a failure
/// @return false when a component has neither a geometry file nor children, when the document would
///         nest more than maxNesting elements, or when a text holds U+FFFE or U+FFFF: the file
///         could not be read back
bool writeDocument(const CTrvAssemblyData& data, DomTree& tree, CFileFault* fault = nullptr);

}  // namespace trv
