#pragma once

/// @file
/// A summary of each component of a tree, with which components of two trees are compared quickly.
///
/// Threads: any.

#include <trvfiles/assembly/component_body.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace trv::cli {

/// Different contents may have the same key, so a key is only a hint that contents are equal.
using ContentKey = std::uint64_t;

struct OutlineNode {
    const ComponentBody* component;
    /// The index of the first child in the outline; the other children follow it.
    std::size_t children;
    /// The number of components in the subtree, this one included.
    std::size_t size;
    /// Of all fields of the subtree except vec3. Numbers are rounded to a multiple of 1e-5.
    ContentKey content;
    /// Of everything in the subtree except the placements. Trees that are equal within the
    /// tolerances of the comparison have equal keys.
    ContentKey texts;
};

/// The components of a tree, level by level, the root first.
class AssemblyOutline {
public:
    /// @param root  has to live as long as the outline. The tree may be deeper than the stack.
    explicit AssemblyOutline(const ComponentBody& root);

    const OutlineNode& root() const { return nodes_.front(); }
    /// The first of the children.
    const OutlineNode* childrenOf(const OutlineNode& node) const {
        return nodes_.data() + node.children;
    }

    /// OutlineNode::content without the name.
    ContentKey contentWithoutName(const OutlineNode& node) const;

private:
    ContentKey textsOf(const OutlineNode& node) const;

    std::vector<OutlineNode> nodes_;
};

/// The key of a text, and of what another key describes.
ContentKey keyOf(const std::string& text, ContentKey other = 0);

}  // namespace trv::cli
