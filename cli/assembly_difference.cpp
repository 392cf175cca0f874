#include <cli/assembly_difference.h>
#include <cli/text_output.h>
#include <trvfiles/assembly/assembly_comparison.h>
#include <trvfiles/assembly/component_body.h>

#include <QString>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace trv::cli {
namespace {

// Iterative: the trees may be deeper than the stack. The path of the current pair is one text that
// grows and shrinks with the levels, so a line takes time for its own length only.
class Comparison {
public:
    explicit Comparison(std::ostream& out) : out_(out) {}

    bool found() const { return found_; }

    void compareSizes(const CTrvAssemblyData& first, const CTrvAssemblyData& second) {
        double one[3];
        double other[3];
        first.getDimension(one);
        second.getDimension(other);
        path_ = "dimension";
        if (dimensionsDiffer(one, other)) {
            printChange(QString(), vectorText(one), vectorText(other));
        }
    }

    void compareTrees(const ComponentBody& first, const ComponentBody& second) {
        path_ = first.name.empty() ? "(root)" : shown(first.name).toStdString();
        compare(first, second);
        while (!levels_.empty()) {
            Level& level = levels_.back();
            if (level.next == std::min(level.first->size(), level.second->size())) {
                printExtra(*level.first, "first");
                printExtra(*level.second, "second");
                levels_.pop_back();
                continue;
            }
            const std::size_t index = level.next++;
            enterChild((*level.first)[index], index);
            compare((*level.first)[index], (*level.second)[index]);
        }
    }

private:
    using Components = std::vector<ComponentBody>;
    // The children of a pair.
    struct Level {
        const Components* first;
        const Components* second;
        /// The number of the pair after the current one.
        std::size_t next;
        /// The length of the parents' path.
        std::size_t pathLength;
    };

    void compare(const ComponentBody& one, const ComponentBody& other) {
        const ComponentDifference difference = differenceOf(one, other);
        if (difference.name) printTexts("name", one.name, other.name);
        if (difference.comment) printTexts("comment", one.comment, other.comment);
        if (difference.geometryFileName) {
            printTexts("file", one.geometryFileName, other.geometryFileName);
        }
        if (difference.enabled) printChange(QString(), enabledText(one), enabledText(other));
        if (difference.translation) printVectors("translation", one.translation, other.translation);
        if (difference.vec1) printVectors("vec1", one.vec1, other.vec1);
        if (difference.vec2) printVectors("vec2", one.vec2, other.vec2);
        if (difference.vec3) {
            const QString change = QStringLiteral(": vec3 %1 -> %2, which does not count\n")
                                       .arg(vectorText(one.vec3), vectorText(other.vec3));
            out_ << "note: " << path_ << qUtf8Printable(change);
        }
        levels_.push_back({&one.components, &other.components, 0, path_.size()});
    }

    static QString enabledText(const ComponentBody& component) {
        return component.enabled ? QStringLiteral("enabled") : QStringLiteral("disabled");
    }

    void printTexts(const char* what, const std::string& one, const std::string& other) {
        printChange(QString::fromLatin1(what), QStringLiteral("\"%1\"").arg(shown(one)),
                    QStringLiteral("\"%1\"").arg(shown(other)));
    }

    void printVectors(const char* what, const double one[3], const double other[3]) {
        printChange(QString::fromLatin1(what), vectorText(one), vectorText(other));
    }

    // @param what  empty if the change itself says it
    void printChange(const QString& what, const QString& from, const QString& to) {
        found_ = true;
        const QString before = what.isEmpty() ? QString() : what + QLatin1Char(' ');
        out_ << path_ << qUtf8Printable(QStringLiteral(": %1%2 -> %3\n").arg(before, from, to));
    }

    // The components of the last level that have no counterpart on the other side.
    void printExtra(const Components& components, const char* side) {
        for (std::size_t index = levels_.back().next; index < components.size(); ++index) {
            found_ = true;
            enterChild(components[index], index);
            out_ << path_ << ": only in the " << side << " file\n";
        }
    }

    // Makes the path that of a component of the last level.
    void enterChild(const ComponentBody& component, std::size_t index) {
        path_.resize(levels_.back().pathLength);
        path_ += '/' + shown(component.name).toStdString() + '[' + std::to_string(index) + ']';
    }

    std::ostream& out_;
    std::vector<Level> levels_;
    /// Of the current pair, in the first assembly's names.
    std::string path_;
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
