#pragma once

/// @file
/// From a file's bytes to a DOM document that is safe to hold.

#include <trvfiles/assembly/dom_tree.h>

#include <QIODevice>

struct CFileFault;

namespace trv {

/// Parses a whole XML document with QDomDocument::setContent(), after an XmlScreen.
///
/// A document is accepted if it is well-formed, nests at most maxNesting elements or groups of a
/// content model, declares no entity, and holds only characters that XML allows in texts, comments,
/// CDATA sections and processing instructions.
///
/// @param device  open for reading, at its beginning; read once if it cannot go back, as a pipe
/// @param tree    takes the document
/// @param fault   takes the reason and its place if the document is not accepted, and a note if
///                bytes were replaced that are not text
/// @return whether the document is accepted
/// @throws std::bad_alloc when memory runs out, or when the system has no second stack for a
///         document that nests more than shallowNesting elements
bool parseDocument(QIODevice& device, DomTree& tree, CFileFault* fault = nullptr);

}  // namespace trv
