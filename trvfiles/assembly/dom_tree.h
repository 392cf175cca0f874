#pragma once

/// @file
/// DOM documents: Qt's policy for them, how deep they may be, and how they are walked and freed.

#include <QDomDocument>

namespace trv {

/// Makes QDomImplementation::ReturnNullNode Qt's process-wide policy for invalid XML data, as
/// reading and writing assembly files needs it. Call it before each of them: a host may have set
/// another policy since the last one.
///
/// Threads: any. It writes only when the policy is another one, so that calls at the same time do
/// not race. A host that sets the policy at the same time does race.
void setInvalidDataPolicy();

/// How many elements may be open at once in an assembly file. Counting from the root, that is 999
/// nested components: a component takes two levels, itself and its "Data", and the innermost one a
/// third for its "File".
constexpr int maxNesting = 2000;

/// Up to here a document is parsed and freed on the caller's stack. Qt recurses for both, with some
/// 350 and 90 bytes a level.
constexpr int shallowNesting = 200;

/// A document that is freed on little stack, however deep it is.
class DomTree {
public:
    DomTree() = default;
    ~DomTree();
    DomTree(const DomTree&) = delete;
    DomTree& operator=(const DomTree&) = delete;

    QDomDocument document;
    /// REQUIRES: true if the document nests more than shallowNesting elements.
    bool isDeep = false;
};

/// Calls `enter(node, depth)` for every node in document order, the document's own children being
/// on level 0, and `leave(node, depth)` for each that has children, after the last of them.
///
/// Iterative and allocation-free: the way back up leads over parentNode().
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
