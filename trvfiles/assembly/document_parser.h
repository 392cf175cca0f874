#pragma once

/// @file
/// From a file's bytes to a DOM document that is safe to hold.

#include <trvfiles/assembly/dom_tree.h>

#include <QIODevice>
#include <QString>

namespace trv {

/// Why a document was not accepted and where, for a person.
struct ParseFault {
    QString reason;
    int line = 0;
    int column = 0;
};

/// Parses a whole XML document with QDomDocument::setContent(), after an XmlScreen.
///
/// @param device  open for reading, at its beginning; read once where it cannot go back, as a pipe
/// @param tree    takes the document
/// @param fault   takes the reason where the document is not accepted
/// @return whether the document is well-formed, nests no more than deepestNesting elements or
/// groups
///         of a content model, declares no entity, and holds no character that XML does not allow
///         in a text, a comment, a CDATA section or a processing instruction
/// @throws std::bad_alloc when memory runs out, or when the system has no second stack for a
/// document
///         that nests more than shallowNesting elements
bool parseDocument(QIODevice& device, DomTree& tree, ParseFault& fault);

}  // namespace trv
