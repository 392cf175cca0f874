#include <trvfiles/assembly/dom_tree.h>
#include <trvfiles/assembly/dom_walk.h>

#include <new>
#include <vector>

namespace trv {
namespace {

void freeInSlices(QDomDocument& document) {
    // A handle keeps its node alive when the node's parent goes. So the document falls into slices
    // of so many levels, which are freed one after the other, the outermost first.
    constexpr int levelsOfASlice = 100;
    std::vector<QDomNode> slices;
    walkDocument(
        document,
        [&](const QDomNode& node, int depth) {
            if (depth % levelsOfASlice == 0) slices.push_back(node);
        },
        [](const QDomNode&, int) {});
    document.clear();
    for (QDomNode& slice : slices)
        slice.clear();
}

}  // namespace

DomTree::~DomTree() {
    if (!isDeep) return;
    try {
        freeInSlices(document);
    } catch (const std::bad_alloc&) {
        // Then it goes the usual way, which needs more stack but no memory.
        document.clear();
    }
}

}  // namespace trv
