#include <cli/common_subsequence.h>
#include <cli/sibling_pairs.h>
#include <trvfiles/assembly/assembly_comparison.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace trv::cli {
namespace {

constexpr std::size_t none = SiblingPair::none;

using Keys = std::vector<ContentKey>;

// The children of a component, with their counterparts.
struct Siblings {
    Siblings(const AssemblyOutline& wholeOutline, const OutlineNode& parent)
        : outline(wholeOutline),
          nodes(wholeOutline.childrenOf(parent)),
          partners(parent.component->components.size(), none),
          unpaired(partners.size()) {}

    std::size_t size() const { return partners.size(); }

    const AssemblyOutline& outline;
    const OutlineNode* nodes;
    /// For each child the index of its counterpart, or `none`.
    std::vector<std::size_t> partners;
    /// The number of children without a counterpart.
    std::size_t unpaired;
};

// Some children, and the key of each.
struct Selection {
    std::vector<std::size_t> indices;
    Keys keys;
};

// Selects the children without a counterpart in [begin, end). A criterion that returns 0 excludes a
// child.
template <class Criterion>
Selection unpairedIn(const Siblings& siblings, std::size_t begin, std::size_t end,
                     Criterion criterion) {
    Selection selection;
    for (std::size_t i = begin; i < end; ++i) {
        if (siblings.partners[i] != none) continue;
        const ContentKey key = criterion(siblings.outline, siblings.nodes[i]);
        if (key == 0) continue;
        selection.indices.push_back(i);
        selection.keys.push_back(key);
    }
    return selection;
}

class Pairing {
public:
    Pairing(Siblings first, Siblings second)
        : first_(std::move(first)), second_(std::move(second)) {}

    /// Whether one of the lists has no child left.
    bool isComplete() const { return first_.unpaired == 0 || second_.unpaired == 0; }

    template <class Criterion>
    void pairInOrder(Criterion criterion) {
        if (isComplete()) return;
        std::vector<IndexPair> chain;
        IndexPair begin = {0, 0};
        for (std::size_t i = 0; i <= chain_.size(); ++i) {
            const IndexPair end =
                i < chain_.size() ? chain_[i] : IndexPair{first_.size(), second_.size()};
            if (begin.first < end.first && begin.second < end.second) {
                const Selection ones = unpairedIn(first_, begin.first, end.first, criterion);
                const Selection others = unpairedIn(second_, begin.second, end.second, criterion);
                for (const IndexPair& pair : commonSubsequence(ones.keys, others.keys))
                    chain.push_back(connect(ones, others, pair));
            }
            if (i < chain_.size()) chain.push_back(end);
            begin = {end.first + 1, end.second + 1};
        }
        chain_ = std::move(chain);
    }

    template <class Criterion>
    void pairInAnyOrder(Criterion criterion) {
        if (isComplete()) return;
        const Selection ones = unpairedIn(first_, 0, first_.size(), criterion);
        const Selection others = unpairedIn(second_, 0, second_.size(), criterion);
        for (const IndexPair& pair : equalElements(ones.keys, others.keys))
            connect(ones, others, pair);
    }

    std::vector<SiblingPair> result() const {
        const std::vector<bool> isMoved = movedOnes();
        std::vector<SiblingPair> pairs;
        pairs.reserve(first_.size() + second_.unpaired);
        std::size_t next = 0;
        const auto addUnpairedUpTo = [&](std::size_t end) {
            for (; next < end; ++next) {
                if (second_.partners[next] == none) pairs.push_back({none, next, false});
            }
        };
        for (std::size_t i = 0; i < first_.size(); ++i) {
            const std::size_t partner = first_.partners[i];
            if (partner != none && !isMoved[i]) addUnpairedUpTo(partner);
            pairs.push_back({i, partner, isMoved[i]});
        }
        addUnpairedUpTo(second_.size());
        return pairs;
    }

private:
    IndexPair connect(const Selection& ones, const Selection& others, const IndexPair& pair) {
        const IndexPair connected = {ones.indices[pair.first], others.indices[pair.second]};
        first_.partners[connected.first] = connected.second;
        second_.partners[connected.second] = connected.first;
        --first_.unpaired;
        --second_.unpaired;
        return connected;
    }

    // Of the pairs, as many as possible keep their order. The others are moved.
    std::vector<bool> movedOnes() const {
        Keys ones;
        Keys others;
        for (std::size_t i = 0; i < first_.size(); ++i) {
            if (first_.partners[i] != none) ones.push_back(i);
        }
        for (const std::size_t partner : second_.partners) {
            if (partner != none) others.push_back(partner);
        }
        std::vector<bool> isMoved(first_.size());
        for (const ContentKey index : ones)
            isMoved[index] = true;
        for (const IndexPair& pair : commonSubsequence(ones, others))
            isMoved[ones[pair.first]] = false;
        return isMoved;
    }

    Siblings first_;
    Siblings second_;
    /// Pairs that are ascending in both lists.
    std::vector<IndexPair> chain_;
};

bool areEqualOneByOne(const OutlineNode* first, const OutlineNode* second, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        if (first[i].texts != second[i].texts) return false;
        if (differenceOf(*first[i].component, *second[i].component).counts()) return false;
    }
    return true;
}

ContentKey nameKey(const AssemblyOutline&, const OutlineNode& node) {
    return keyOf(node.component->name);
}

Keys sortedNames(const Siblings& siblings) {
    Keys names;
    for (std::size_t i = 0; i < siblings.size(); ++i)
        names.push_back(nameKey(siblings.outline, siblings.nodes[i]));
    std::sort(names.begin(), names.end());
    return names;
}

// The names that only one child has, in ascending order.
Keys uniqueNames(const Siblings& siblings) {
    const Keys names = sortedNames(siblings);
    Keys unique;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const bool equalsPrevious = i > 0 && names[i] == names[i - 1];
        const bool equalsNext = i + 1 < names.size() && names[i] == names[i + 1];
        if (!equalsPrevious && !equalsNext) unique.push_back(names[i]);
    }
    return unique;
}

ContentKey contentWithoutNameKey(const AssemblyOutline& outline, const OutlineNode& node) {
    return outline.contentWithoutName(node);
}

// The geometry file, or the names of the children in any order.
ContentKey remainsKey(const AssemblyOutline&, const OutlineNode& node) {
    const ComponentBody& component = *node.component;
    if (!component.geometryFileName.empty()) return keyOf(component.geometryFileName);
    ContentKey key = 0;
    for (const ComponentBody& child : component.components)
        key += keyOf(child.name);
    return key;
}

void pairUniqueNames(Pairing& pairing, const Siblings& first, const Siblings& second) {
    if (pairing.isComplete()) return;
    const Keys ones = uniqueNames(first);
    const Keys others = uniqueNames(second);
    pairing.pairInAnyOrder([&](const AssemblyOutline& outline, const OutlineNode& node) {
        const ContentKey key = nameKey(outline, node);
        const bool isUnique = std::binary_search(ones.begin(), ones.end(), key) &&
                              std::binary_search(others.begin(), others.end(), key);
        return isUnique ? key : 0;
    });
}

// Pairs children in any order whose names are in one of the lists only.
template <class Criterion>
void pairRenamed(Pairing& pairing, const Siblings& first, const Siblings& second,
                 Criterion criterion) {
    if (pairing.isComplete()) return;
    const Keys ones = sortedNames(first);
    const Keys others = sortedNames(second);
    pairing.pairInAnyOrder([&](const AssemblyOutline& outline, const OutlineNode& node) {
        const ContentKey name = nameKey(outline, node);
        const bool isInBoth = std::binary_search(ones.begin(), ones.end(), name) &&
                              std::binary_search(others.begin(), others.end(), name);
        return isInBoth ? 0 : criterion(outline, node);
    });
}

void pairByCriteria(Pairing& pairing, const Siblings& first, const Siblings& second) {
    const auto content = [](const AssemblyOutline&, const OutlineNode& node) {
        return node.content;
    };
    pairing.pairInOrder(content);
    pairing.pairInAnyOrder(content);
    pairing.pairInOrder([](const AssemblyOutline&, const OutlineNode& node) { return node.texts; });
    pairing.pairInOrder([](const AssemblyOutline& outline, const OutlineNode& node) {
        return keyOf(node.component->geometryFileName, nameKey(outline, node));
    });
    pairing.pairInOrder(nameKey);
    pairUniqueNames(pairing, first, second);
    pairing.pairInOrder(contentWithoutNameKey);
    // Empty groups have the same content without anything in common.
    pairRenamed(
        pairing, first, second, [](const AssemblyOutline& outline, const OutlineNode& node) {
            return remainsKey(outline, node) == 0 ? 0 : contentWithoutNameKey(outline, node);
        });
    pairing.pairInOrder(remainsKey);
    pairRenamed(pairing, first, second, remainsKey);
}

}  // namespace

std::vector<SiblingPair> pairSiblings(const AssemblyOutline& firstOutline, const OutlineNode& first,
                                      const AssemblyOutline& secondOutline,
                                      const OutlineNode& second) {
    const std::size_t count = first.component->components.size();
    if (second.component->components.size() == count &&
        areEqualOneByOne(firstOutline.childrenOf(first), secondOutline.childrenOf(second), count)) {
        std::vector<SiblingPair> pairs(count);
        for (std::size_t i = 0; i < count; ++i)
            pairs[i] = {i, i, false};
        return pairs;
    }
    const Siblings ones(firstOutline, first);
    const Siblings others(secondOutline, second);
    Pairing pairing(ones, others);
    pairByCriteria(pairing, ones, others);
    return pairing.result();
}

}  // namespace trv::cli
