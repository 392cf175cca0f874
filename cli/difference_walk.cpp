#include <cli/difference_walk.h>
#include <cli/sibling_pairs.h>
#include <trvfiles/assembly/assembly_comparison.h>

#include <cmath>
#include <vector>

namespace trv::cli {
namespace {

using Change = Difference::Change;
using Field = Difference::Field;

Orientation orientationOf(const ComponentFields& fields) {
    return {fields.vec1, fields.vec2, fields.vec3};
}

std::optional<Rotation> visibleRotation(const ComponentFields& one, const ComponentFields& other) {
    constexpr double halfOfLastDecimal = 5e-7;
    const auto rotation = rotationBetween(orientationOf(one), orientationOf(other));
    if (!rotation || std::fabs(rotation->degrees) <= halfOfLastDecimal) return std::nullopt;
    return rotation;
}

// Iterative: the trees may be deeper than the stack.
class Walk {
public:
    Walk(const AssemblyOutline& firstOutline, const AssemblyOutline& secondOutline, PathForm form,
         const std::function<void(const Difference&)>& receive)
        : firstOutline_(firstOutline),
          secondOutline_(secondOutline),
          firstPath_(form),
          secondPath_(form),
          receive_(receive) {}

    void compareTrees() {
        enter({&firstOutline_.root(), &secondOutline_.root(), 0, 0}, false);
        while (!levels_.empty()) {
            Level& level = levels_.back();
            if (level.next == level.pairs.size()) {
                levels_.pop_back();
                leave();
                continue;
            }
            // visit() may grow the list of levels.
            const SiblingPair pair = level.pairs[level.next++];
            visit(pair, level.first, level.second);
        }
    }

private:
    struct Pair {
        const OutlineNode* first;
        const OutlineNode* second;
        std::size_t firstIndex;
        std::size_t secondIndex;
    };
    // The children of a pair.
    struct Level {
        const OutlineNode* first;
        const OutlineNode* second;
        std::vector<SiblingPair> pairs;
        std::size_t next;
    };

    void visit(const SiblingPair& pair, const OutlineNode* first, const OutlineNode* second) {
        if (pair.second == SiblingPair::none) {
            visitUnpaired(Change::removed, first[pair.first], pair.first, firstPath_);
        } else if (pair.first == SiblingPair::none) {
            visitUnpaired(Change::added, second[pair.second], pair.second, secondPath_);
        } else {
            enter({&first[pair.first], &second[pair.second], pair.first, pair.second},
                  pair.isMoved);
        }
    }

    void visitUnpaired(Change change, const OutlineNode& node, std::size_t index, PathText& path) {
        path.enter(*node.component, index);
        const bool isRemoved = change == Change::removed;
        receive_({change, Field::none, path.text(), isRemoved ? &node : nullptr,
                  isRemoved ? nullptr : &node, isRemoved ? index : 0, isRemoved ? 0 : index,
                  nullptr, nullptr, std::nullopt});
        path.leave();
    }

    void enter(const Pair& pair, bool isMoved) {
        const ComponentBody& first = *pair.first->component;
        const ComponentBody& second = *pair.second->component;
        firstPath_.enter(first, pair.firstIndex);
        secondPath_.enter(second, pair.secondIndex);
        pair_ = pair;
        if (isMoved) receive(Change::moved, Field::none);
        compareFields(first, second);
        if (first.components.empty() && second.components.empty()) {
            leave();
            return;
        }
        levels_.push_back(
            {firstOutline_.childrenOf(*pair.first), secondOutline_.childrenOf(*pair.second),
             pairSiblings(firstOutline_, *pair.first, secondOutline_, *pair.second), 0});
    }

    void leave() {
        firstPath_.leave();
        secondPath_.leave();
    }

    void compareFields(const ComponentFields& one, const ComponentFields& other) {
        const ComponentDifference difference = differenceOf(one, other);
        if (difference.name) receive(Change::changed, Field::name);
        if (difference.comment) receive(Change::changed, Field::comment);
        if (difference.geometryFileName) receive(Change::changed, Field::geometryFile);
        if (difference.enabled) receive(Change::changed, Field::enabled);
        if (difference.translation) {
            receive(Change::changed, Field::translation, one.translation, other.translation);
        }
        std::optional<Rotation> rotation;
        if (difference.vec1 || difference.vec2) {
            rotation = visibleRotation(one, other);
            receive(Change::changed, Field::orientation, nullptr, nullptr, rotation);
        }
        if (difference.vec3 && !rotation) {
            receive(Change::ignored, Field::vec3, one.vec3, other.vec3);
        }
    }

    // About the current pair.
    void receive(Change change, Field field, const double* firstVector = nullptr,
                 const double* secondVector = nullptr,
                 const std::optional<Rotation>& rotation = std::nullopt) {
        receive_({change, field, firstPath_.text(), pair_.first, pair_.second, pair_.firstIndex,
                  pair_.secondIndex, firstVector, secondVector, rotation});
    }

    const AssemblyOutline& firstOutline_;
    const AssemblyOutline& secondOutline_;
    PathText firstPath_;
    PathText secondPath_;
    const std::function<void(const Difference&)>& receive_;
    std::vector<Level> levels_;
    Pair pair_ = {};
};

}  // namespace

DifferenceWalk::DifferenceWalk(const CTrvAssemblyData& first, const CTrvAssemblyData& second)
    : first_(first),
      second_(second),
      firstOutline_(ComponentBody::of(first.getRootComponent())),
      secondOutline_(ComponentBody::of(second.getRootComponent())) {}

void DifferenceWalk::run(PathForm form,
                         const std::function<void(const Difference&)>& receive) const {
    double one[3];
    double other[3];
    first_.getDimension(one);
    second_.getDimension(other);
    if (dimensionsDiffer(one, other)) {
        receive({Change::changed, Field::dimension, std::string(), nullptr, nullptr, 0, 0, one,
                 other, std::nullopt});
    }
    Walk(firstOutline_, secondOutline_, form, receive).compareTrees();
}

}  // namespace trv::cli
