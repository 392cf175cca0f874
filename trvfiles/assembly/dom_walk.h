#pragma once

/// @file
/// A walk over all nodes of a document that needs no stack for their depth.

#include <QDomDocument>

namespace trv {

/// Calls `enter(node, depth)` for every node in document order, the document's own children being
/// on level 0, and `leave(node, depth)` for each that has children, behind the last of them.
template <class Enter, class Leave>
void walkDocument(const QDomDocument& document, Enter enter, Leave leave) {
    int depth = 0;
    QDomNode node = document.firstChild();
    while (!node.isNull()) {
        enter(node, depth);
        QDomNode next = node.firstChild();
        if (!next.isNull()) {
            ++depth;
        } else {
            next = node.nextSibling();
            while (next.isNull() && depth > 0) {
                node = node.parentNode();
                --depth;
                leave(node, depth);
                next = node.nextSibling();
            }
        }
        node = next;
    }
}

}  // namespace trv
