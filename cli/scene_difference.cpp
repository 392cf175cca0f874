#include <cli/assembly_difference.h>
#include <cli/difference_walk.h>
#include <cli/scene_difference.h>

#include <QStringList>

#include <string>
#include <unordered_map>

namespace trv::cli {
namespace {

using Indices = std::unordered_map<const ComponentBody*, int>;

// In ascending order of their weight: the kind of a component is that of its weightiest difference.
enum class Kind { note, reordered, changed, moved, removed, added, dimension };

Kind kindOf(const Difference& difference) {
    using Change = Difference::Change;
    using Field = Difference::Field;
    switch (difference.change) {
        case Change::added:
            return Kind::added;
        case Change::removed:
            return Kind::removed;
        case Change::moved:
            return Kind::reordered;
        case Change::ignored:
            return Kind::note;
        case Change::changed:
            break;
    }
    if (difference.field == Field::dimension) return Kind::dimension;
    const bool isPlacement =
        difference.field == Field::translation || difference.field == Field::orientation;
    return isPlacement ? Kind::moved : Kind::changed;
}

QLatin1String wordFor(Kind kind) {
    switch (kind) {
        case Kind::note:
            return QLatin1String("note");
        case Kind::reordered:
            return QLatin1String("reordered");
        case Kind::changed:
            return QLatin1String("changed");
        case Kind::moved:
            return QLatin1String("moved");
        case Kind::removed:
            return QLatin1String("removed");
        case Kind::added:
            return QLatin1String("added");
        case Kind::dimension:
            break;
    }
    return QLatin1String("dimension");
}

int indexOf(const OutlineNode* node, const Indices& indices) {
    return node == nullptr ? -1 : indices.at(node->component);
}

// The differences of one component. They are received one after the other.
class Entries {
public:
    Entries(const SceneSide& first, const SceneSide& second, JsonWriter& json)
        : firstIndices_(first.components.indices()),
          secondIndices_(second.components.indices()),
          json_(json) {}

    void add(const Difference& difference) {
        const int first = indexOf(difference.first, firstIndices_);
        const int second = indexOf(difference.second, secondIndices_);
        const Kind kind = kindOf(difference);
        const bool continues =
            !texts_.isEmpty() && kind_ != Kind::dimension && first == first_ && second == second_;
        if (!continues) {
            end();
            path_ = placeOf(difference);
            first_ = first;
            second_ = second;
            kind_ = kind;
        }
        kind_ = std::max(kind_, kind);
        texts_ += textsOf(difference);
    }

    void end() {
        if (texts_.isEmpty()) return;
        json_.beginObject();
        json_.add("kind", wordFor(kind_));
        json_.addUtf8("path", path_);
        json_.add("text", texts_.join(QLatin1Char('\n')));
        json_.addInteger("old", first_);
        json_.addInteger("new", second_);
        json_.endObject();
        texts_.clear();
    }

private:
    const Indices firstIndices_;
    const Indices secondIndices_;
    JsonWriter& json_;
    Kind kind_ = Kind::note;
    std::string path_;
    int first_ = -1;
    int second_ = -1;
    QStringList texts_;
};

}  // namespace

void writeSceneDifference(const SceneSide& first, const SceneSide& second, JsonWriter& json) {
    json.beginArray("diff");
    Entries entries(first, second, json);
    DifferenceWalk(first.assembly, second.assembly)
        .run(PathForm::visible, [&](const Difference& difference) { entries.add(difference); });
    entries.end();
    json.endArray();
}

}  // namespace trv::cli
