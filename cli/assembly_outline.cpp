#include <cli/assembly_outline.h>

#include <cmath>
#include <cstring>
#include <functional>

namespace trv::cli {
namespace {

class KeyBuilder {
public:
    // The finalizer of SplitMix64: each bit of the input changes about half of the bits of the key.
    void add(std::uint64_t value) {
        key_ += value + 0x9E3779B97F4A7C15;
        key_ = (key_ ^ (key_ >> 30)) * 0xBF58476D1CE4E5B9;
        key_ = (key_ ^ (key_ >> 27)) * 0x94D049BB133111EB;
        key_ ^= key_ >> 31;
    }

    void add(const std::string& text) { add(std::hash<std::string>()(text)); }

    void add(const double vector[3]) {
        for (int i = 0; i < 3; ++i)
            add(rounded(vector[i]));
    }

    ContentKey key() const { return key_; }

private:
    // Files that different programs write differ in the last decimals of the same placement.
    static std::uint64_t rounded(double value) {
        constexpr double steps = 1e5;
        constexpr double maxRounded = 1e12;
        // A NaN has many representations.
        if (std::isnan(value)) return 1;
        // -0.0 becomes 0.0.
        if (std::fabs(value) < maxRounded) value = std::round(value * steps) + 0.0;
        std::uint64_t bits = 0;
        static_assert(sizeof bits == sizeof value);
        std::memcpy(&bits, &value, sizeof bits);
        return bits;
    }

    ContentKey key_ = 0;
};

std::size_t countOf(const ComponentBody& root) {
    std::size_t count = 1;
    std::vector<const ComponentBody*> pending{&root};
    while (!pending.empty()) {
        const std::vector<ComponentBody>& children = pending.back()->components;
        pending.pop_back();
        count += children.size();
        for (const ComponentBody& child : children) {
            if (!child.components.empty()) pending.push_back(&child);
        }
    }
    return count;
}

}  // namespace

AssemblyOutline::AssemblyOutline(const ComponentBody& root) {
    // While the list grew, it would be in memory twice: 1.24 times the memory of both assemblies
    // for a comparison, the bound is 1.2.
    nodes_.reserve(countOf(root));
    nodes_.push_back({&root, 1, 1, 0, 0});
    for (std::size_t i = 0; i < nodes_.size(); ++i) {
        nodes_[i].children = nodes_.size();
        for (const ComponentBody& child : nodes_[i].component->components)
            nodes_.push_back({&child, 0, 1, 0, 0});
    }
    // Children are after their parents, so their keys and sizes are complete.
    for (std::size_t i = nodes_.size(); i-- > 0;) {
        OutlineNode& node = nodes_[i];
        const OutlineNode* const children = childrenOf(node);
        for (std::size_t child = 0; child < node.component->components.size(); ++child)
            node.size += children[child].size;
        node.texts = textsOf(node);
        KeyBuilder builder;
        builder.add(node.component->name);
        builder.add(contentWithoutName(node));
        node.content = builder.key();
    }
}

ContentKey AssemblyOutline::contentWithoutName(const OutlineNode& node) const {
    const ComponentBody& fields = *node.component;
    KeyBuilder builder;
    builder.add(fields.comment);
    builder.add(fields.geometryFileName);
    builder.add(fields.enabled ? 1 : 0);
    builder.add(fields.translation);
    builder.add(fields.vec1);
    builder.add(fields.vec2);
    const OutlineNode* const children = childrenOf(node);
    for (std::size_t child = 0; child < fields.components.size(); ++child)
        builder.add(children[child].content);
    return builder.key();
}

ContentKey AssemblyOutline::textsOf(const OutlineNode& node) const {
    const ComponentBody& fields = *node.component;
    KeyBuilder builder;
    builder.add(fields.name);
    builder.add(fields.comment);
    builder.add(fields.geometryFileName);
    builder.add(fields.enabled ? 1 : 0);
    const OutlineNode* const children = childrenOf(node);
    for (std::size_t child = 0; child < fields.components.size(); ++child)
        builder.add(children[child].texts);
    return builder.key();
}

ContentKey keyOf(const std::string& text, ContentKey other) {
    KeyBuilder builder;
    builder.add(text);
    builder.add(other);
    return builder.key();
}

}  // namespace trv::cli
