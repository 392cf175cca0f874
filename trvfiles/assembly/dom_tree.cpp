#include <trvfiles/assembly/dom_tree.h>

#include <QDomImplementation>

#include <mutex>
#include <new>
#include <vector>

namespace trv {
namespace {

void freeInSlices(QDomDocument& document) {
    // A handle keeps its node alive after the node's parent is freed. So the handles to every
    // hundredth level divide the document into slices, and freeing one slice recurses through its
    // own levels only. The outermost slice is freed first.
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

void setInvalidDataPolicy() {
    // Qt holds the policy in a plain variable, which the parsers of other threads read without this
    // lock. So nothing may write the value that it has already.
    static std::mutex mutex;
    const std::lock_guard<std::mutex> lock(mutex);
    if (QDomImplementation::invalidDataPolicy() != QDomImplementation::ReturnNullNode) {
        QDomImplementation::setInvalidDataPolicy(QDomImplementation::ReturnNullNode);
    }
}

DomTree::~DomTree() {
    if (!isDeep) return;
    try {
        freeInSlices(document);
    } catch (const std::bad_alloc&) {
        // Qt's own way needs no memory, but more stack: some 90 bytes a level.
        document.clear();
    }
}

}  // namespace trv
