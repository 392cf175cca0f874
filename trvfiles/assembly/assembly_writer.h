#pragma once

/// @file
/// From an assembly record to the bytes of its file, by way of a DOM document.

#include <trvfiles/assembly/dom_tree.h>

#include <string>

class CTrvAssemblyData;
struct CFileFault;

namespace trv {

/// Builds the document of an assembly file.
///
/// @param tree   an empty document, which takes the elements; of no use after a failure
/// @param fault  takes the reason of a failure
/// @return false when a component has neither a geometry file nor children, when the document would
///         nest more than maxNesting elements, or when a text holds U+FFFE or U+FFFF: the file
///         could not be read back
bool writeDocument(const CTrvAssemblyData& data, DomTree& tree, CFileFault* fault = nullptr);

/// The text of an assembly document in UTF-8, as QDomDocument::toString(3) lays it out, but with
/// each element's attributes in the order of the format: `toString` writes them in an order that
/// differs from process to process, and it recurses.
///
/// REQUIRES: a document of elements and processing instructions alone, whose attributes are those
/// of the format.
std::string documentText(const QDomDocument& document);

}  // namespace trv
