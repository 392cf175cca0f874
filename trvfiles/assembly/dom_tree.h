#pragma once

/// @file
/// DOM documents and what their depth costs.

#include <QDomDocument>

namespace trv {

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
    /// REQUIRES: true where the document nests more than shallowNesting elements.
    bool isDeep = false;
};

}  // namespace trv
