#include <trvfiles/c/indexed_assembly.h>
#include <trvfiles/c/trvfiles.h>

#include <utility>

namespace trv::c {
namespace {

using Node = IndexedAssembly::Node;

// A tree may be deeper than the stack, so the walk keeps a list of the open components.
std::vector<Node> nodesOf(ComponentBody& root) {
    struct Open {
        std::size_t index;
        std::size_t nextChild;
    };
    std::vector<Node> nodes;
    std::vector<Open> open;
    const auto enter = [&](ComponentBody& body) {
        const std::size_t parent = open.empty() ? TRVFILES_NO_INDEX : open.back().index;
        nodes.push_back({&body, parent, 1, open.size()});
        open.push_back({nodes.size() - 1, 0});
    };
    enter(root);
    while (!open.empty()) {
        Open& current = open.back();
        Node& node = nodes[current.index];
        if (current.nextChild < node.body->components.size()) {
            enter(node.body->components[current.nextChild++]);
        } else {
            node.subtreeSize = nodes.size() - current.index;
            open.pop_back();
        }
    }
    return nodes;
}

}  // namespace

IndexedAssembly::IndexedAssembly() : IndexedAssembly(CTrvAssemblyData()) {}

IndexedAssembly::IndexedAssembly(CTrvAssemblyData data) : data_(std::move(data)) {}

void IndexedAssembly::dropNodes() {
    nodes_.clear();
}

const std::vector<Node>& IndexedAssembly::nodes() {
    const std::lock_guard lock(mutex_);
    if (nodes_.empty()) nodes_ = nodesOf(ComponentBody::editable(data_.getRootComponent()));
    return nodes_;
}

std::size_t IndexedAssembly::add(std::size_t parent, std::size_t position, ComponentBody added) {
    const std::vector<Node>& known = nodes();
    const bool isLast = position == known[parent].body->components.size() &&
                        parent + known[parent].subtreeSize == known.size();
    if (isLast && added.components.empty()) {
        append(parent, std::move(added));
        return nodes_.size() - 1;
    }
    const std::size_t index = indexOfChild(parent, position);
    insert(parent, position, std::move(added));
    return index;
}

// Keeps the list of components, so that a tree is built in document order in time for its size.
// A longer list of children may move: then the siblings are at new addresses, and what is below
// them is not.
void IndexedAssembly::append(std::size_t parent, ComponentBody added) {
    // Before the tree changes. A reserve() for one node more would copy the list each time.
    if (nodes_.size() == nodes_.capacity()) nodes_.reserve(2 * nodes_.size());
    std::vector<ComponentBody>& children = nodes_[parent].body->components;
    const ComponentBody* earlier = children.data();
    children.push_back(std::move(added));
    if (children.data() != earlier) {
        std::size_t index = parent + 1;
        for (std::size_t i = 0; i + 1 < children.size(); ++i) {
            nodes_[index].body = &children[i];
            index += nodes_[index].subtreeSize;
        }
    }
    nodes_.push_back({&children.back(), parent, 1, nodes_[parent].depth + 1});
    for (std::size_t above = parent; above != TRVFILES_NO_INDEX; above = nodes_[above].parent)
        ++nodes_[above].subtreeSize;
}

void IndexedAssembly::insert(std::size_t parent, std::size_t position, ComponentBody added) {
    std::vector<ComponentBody>& children = nodes_[parent].body->components;
    children.insert(children.begin() + static_cast<std::ptrdiff_t>(position), std::move(added));
    dropNodes();
}

std::size_t IndexedAssembly::indexOfChild(std::size_t parent, std::size_t position) {
    std::size_t index = parent + 1;
    for (std::size_t i = 0; i < position; ++i)
        index += nodes_[index].subtreeSize;
    return index;
}

void IndexedAssembly::remove(std::size_t index) {
    const std::vector<Node>& known = nodes();
    std::vector<ComponentBody>& children = known[known[index].parent].body->components;
    children.erase(children.begin() + (known[index].body - children.data()));
    dropNodes();
}

}  // namespace trv::c
