#include <cli/assembly_tree.h>
#include <cli/rotation.h>
#include <cli/text_output.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace trv::cli {
namespace {

constexpr double unitVectors[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};

bool isUnit(const double vector[3], int axis) {
    return std::equal(vector, vector + 3, unitVectors[axis]);
}

void appendOrientation(std::string& line, const ComponentBody& component, bool matrix) {
    if (isUnit(component.vec1, 0) && isUnit(component.vec2, 1) && isUnit(component.vec3, 2)) return;
    std::optional<Rotation> rotation;
    if (!matrix) rotation = rotationOf({component.vec1, component.vec2, component.vec3});
    if (!rotation) return appendAxes(line, component.vec1, component.vec2, component.vec3);
    const QString text = rotationText(*rotation);
    // The axes differ from those of the parent by less than what is printed.
    if (text.startsWith(QStringLiteral("0°"))) return;
    line += ", turned ";
    appendUtf8(line, text);
}

class TreePrinter {
public:
    TreePrinter(const TreeForm& form, std::ostream& out)
        : matrix_(form.matrix), hasGuides_(form.hasGuides), line_(form.text), out_(out) {}

    void print(const SelectedComponent& entry) {
        beginLine(entry);
        const ComponentBody& component = *entry.component;
        if (component.name.empty()) {
            line_.text() += "(no name)";
        } else {
            appendShown(line_.text(), component.name);
        }
        if (!component.enabled) line_.text() += " (disabled)";
        if (!component.geometryFileName.empty()) {
            line_.text() += ": ";
            line_.begin(Style::file);
            appendShown(line_.text(), component.geometryFileName);
            line_.begin(Style::plain);
        }
        line_.text() += ", at ";
        appendRoundedVector(line_.text(), component.translation);
        appendOrientation(line_.text(), component, matrix_);
        if (!component.comment.empty()) {
            line_.begin(Style::faint);
            line_.text() += " -- ";
            appendShown(line_.text(), component.comment);
        }
        line_.finish(out_.text());
        out_.endPiece();
    }

private:
    static constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

    void beginLine(const SelectedComponent& entry) {
        const std::size_t level = entry.level;
        if (level <= disabledLevel_) disabledLevel_ = entry.component->enabled ? none : level;
        if (disabledLevel_ != none) line_.setFaint();
        if (!hasGuides_) {
            line_.text().append(4 * level, ' ');
            return;
        }
        if (level == 0) {
            guideLengths_ = {0};
            return;
        }
        guideLengths_.resize(level);
        guides_.resize(guideLengths_.back());
        line_.text().append(guides_).append(entry.isLast != 0 ? "└── " : "├── ");
        guides_ += entry.isLast != 0 ? "    " : "│   ";
        guideLengths_.push_back(guides_.size());
    }

    bool matrix_;
    bool hasGuides_;
    StyledLine line_;
    OutputBuffer out_;
    /// Before the children of the current component.
    std::string guides_;
    /// The lengths of the guides before the children of the current component and of those above
    /// it.
    std::vector<std::size_t> guideLengths_;
    /// Of the disabled component that is or contains the current one.
    std::size_t disabledLevel_ = none;
};

}  // namespace

QCommandLineOption noGuidesOption() {
    return QCommandLineOption(QStringLiteral("no-guides"),
                              QStringLiteral("Indent the tree instead of drawing its lines"));
}

bool printTree(const CTrvAssemblyData& assembly, const ComponentSelection& selection,
               const TreeForm& form, std::ostream& out) {
    const std::vector<SelectedComponent> components = selectComponents(assembly, selection);
    TreePrinter printer(form, out);
    for (const SelectedComponent& entry : components)
        printer.print(entry);
    return !components.empty();
}

}  // namespace trv::cli
