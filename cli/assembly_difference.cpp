#include <cli/assembly_difference.h>
#include <cli/text_output.h>
#include <trvfiles/assembly/component_body.h>

#include <QString>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

namespace trv::cli {
namespace {

// The tolerances of the records' own comparison. A NaN never makes a difference.
constexpr double placementTolerance = 1e-6;
constexpr double squaredDistanceTolerance = 1e-6;

bool differ(const double one[3], const double other[3]) {
    for (int i = 0; i < 3; ++i) {
        if (std::fabs(one[i] - other[i]) > placementTolerance) return true;
    }
    return false;
}

bool sizesDiffer(const double one[3], const double other[3]) {
    double squaredDistance = 0;
    for (int i = 0; i < 3; ++i) {
        const double difference = one[i] - other[i];
        squaredDistance += difference * difference;
    }
    return squaredDistance > squaredDistanceTolerance;
}

class Comparison {
public:
    explicit Comparison(std::ostream& out) : out_(out) {}

    bool found() const { return found_; }

    void compareSizes(const CTrvAssemblyData& first, const CTrvAssemblyData& second) {
        double one[3];
        double other[3];
        first.getDimension(one);
        second.getDimension(other);
        if (sizesDiffer(one, other)) {
            printChange(QStringLiteral("dimension"), vectorText(one), vectorText(other));
        }
    }

    // The trees may be deeper than the stack, so the way to the pair at hand stands in a list.
    void compareTrees(const ComponentBody& first, const ComponentBody& second) {
        rootName_ = &first.name;
        compare(first, second);
        while (!way_.empty()) {
            Level& level = way_.back();
            if (level.next == std::min(level.first->size(), level.second->size())) {
                printExtra(*level.first, level.next, "first");
                printExtra(*level.second, level.next, "second");
                way_.pop_back();
                continue;
            }
            const std::size_t index = level.next++;
            compare((*level.first)[index], (*level.second)[index]);
        }
    }

private:
    using Components = std::vector<ComponentBody>;
    struct Level {
        const Components* first;
        const Components* second;
        // Behind the pair at hand.
        std::size_t next;
    };

    void compare(const ComponentBody& one, const ComponentBody& other) {
        compareTexts("name", one.name, other.name);
        compareTexts("comment", one.comment, other.comment);
        compareTexts("file", one.geometryFileName, other.geometryFileName);
        if (one.enabled != other.enabled) {
            printChange(path(),
                        one.enabled ? QStringLiteral("enabled") : QStringLiteral("disabled"),
                        other.enabled ? QStringLiteral("enabled") : QStringLiteral("disabled"));
        }
        compareVectors("translation", one.translation, other.translation);
        compareVectors("vec1", one.vec1, other.vec1);
        compareVectors("vec2", one.vec2, other.vec2);
        if (differ(one.vec3, other.vec3)) {
            out_ << qUtf8Printable(QStringLiteral("note: %1: vec3 %2 -> %3, which does not count\n")
                                       .arg(path(), vectorText(one.vec3), vectorText(other.vec3)));
        }
        way_.push_back({&one.components, &other.components, 0});
    }

    void compareTexts(const char* what, const std::string& one, const std::string& other) {
        if (one == other) return;
        printChange(path(), QStringLiteral("%1 \"%2\"").arg(QLatin1String(what), shown(one)),
                    QStringLiteral("\"%1\"").arg(shown(other)));
    }

    void compareVectors(const char* what, const double one[3], const double other[3]) {
        if (!differ(one, other)) return;
        printChange(path(), QStringLiteral("%1 %2").arg(QLatin1String(what), vectorText(one)),
                    vectorText(other));
    }

    void printChange(const QString& place, const QString& from, const QString& to) {
        found_ = true;
        out_ << qUtf8Printable(QStringLiteral("%1: %2 -> %3\n").arg(place, from, to));
    }

    // Those of one side that have no counterpart.
    void printExtra(const Components& components, std::size_t from, const char* side) {
        for (std::size_t index = from; index < components.size(); ++index) {
            found_ = true;
            const QString place = QStringLiteral("%1/%2").arg(path(way_.size() - 1),
                                                              segment(components[index], index));
            out_ << qUtf8Printable(
                QStringLiteral("%1: only in the %2 file\n").arg(place, QLatin1String(side)));
        }
    }

    static QString segment(const ComponentBody& component, std::size_t index) {
        return QStringLiteral("%1[%2]").arg(shown(component.name), QString::number(index));
    }

    QString path() const { return path(way_.size()); }

    // The first so many levels of the way to the pair at hand, in the first assembly's names.
    QString path(std::size_t levels) const {
        QStringList segments(rootName_->empty() ? QStringLiteral("(root)") : shown(*rootName_));
        for (std::size_t i = 0; i < levels; ++i) {
            const std::size_t index = way_[i].next - 1;
            segments += segment((*way_[i].first)[index], index);
        }
        return segments.join(QLatin1Char('/'));
    }

    std::ostream& out_;
    const std::string* rootName_ = nullptr;
    std::vector<Level> way_;
    bool found_ = false;
};

}  // namespace

bool printDifferences(const CTrvAssemblyData& first, const CTrvAssemblyData& second,
                      std::ostream& out) {
    Comparison comparison(out);
    comparison.compareSizes(first, second);
    comparison.compareTrees(ComponentBody::of(first.getRootComponent()),
                            ComponentBody::of(second.getRootComponent()));
    return comparison.found();
}

}  // namespace trv::cli
