#include <cli/input_files.h>
#include <cli/placement_list.h>
#include <trvfiles/assembly/component_body.h>
#include <trvfiles/text/text_conversion.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace trv::cli {
namespace {

// The components of the flattened list, in its order: those that are enabled, have a file and are
// below no disabled component. Iterative: the tree may be deeper than the stack.
class PlacedComponents {
public:
    explicit PlacedComponents(const CTrvAssemblyData& assembly)
        : root_(ComponentBody::of(assembly.getRootComponent())) {}

    /// Moves to the first or the next component.
    ///
    /// REQUIRES: there is one.
    void moveOn() {
        if (!isEntered_) {
            isEntered_ = true;
            path_.clear();
            if (root_.name.empty()) path_ = "(root)";
            appendShown(path_, root_.name);
            if (enter(root_)) return;
        }
        while (!levels_.empty()) {
            Level& level = levels_.back();
            if (level.next == level.components->size()) {
                levels_.pop_back();
                continue;
            }
            const std::size_t index = level.next++;
            const ComponentBody& component = (*level.components)[index];
            path_.resize(level.pathLength);
            path_ += '/';
            appendShown(path_, component.name);
            path_ += '[';
            appendInteger(path_, static_cast<long long>(index));
            path_ += ']';
            if (enter(component)) return;
        }
    }

    const ComponentBody& component() const { return *current_; }
    /// The path of the current component, as `assembly diff` prints it.
    const std::string& path() const { return path_; }

private:
    struct Level {
        const std::vector<ComponentBody>* components;
        std::size_t next;
        /// The length of the parent's path.
        std::size_t pathLength;
    };

    // Returns whether the component is placed.
    bool enter(const ComponentBody& component) {
        if (!component.enabled) return false;
        current_ = &component;
        levels_.push_back({&component.components, 0, path_.size()});
        return !component.geometryFileName.empty();
    }

    const ComponentBody& root_;
    const ComponentBody* current_ = nullptr;
    std::vector<Level> levels_;
    std::string path_;
    bool isEntered_ = false;
};

struct Placement {
    explicit Placement(const CComponentInfo& entry) {
        entry.getTranslation(translation);
        entry.getOrientation(vec1, vec2, vec3);
    }

    const double* translation = nullptr;
    const double* vec1 = nullptr;
    const double* vec2 = nullptr;
    const double* vec3 = nullptr;
};

// Calls `visit(component, path, placement)` for each entry of the flattened list. The placement is
// that of the library, the component has been found by a walk in the same order.
template <class Visit>
void forEachPlacement(const CTrvAssemblyData& assembly, Visit visit) {
    PlacedComponents components(assembly);
    for (const CComponentInfo& entry : assembly.getComponentFileList()) {
        components.moveOn();
        visit(components.component(), components.path(), Placement(entry));
    }
}

// A spreadsheet would take the text for a formula. Tabs and line ends, which have the same effect,
// are escaped by shown().
bool isLikeFormula(std::string_view text) {
    return !text.empty() && std::string_view("=+-@").find(text.front()) != std::string_view::npos;
}

// shown() escapes line ends, so each line is one row.
void appendCsvText(std::string& line, const std::string& shownText, bool isRaw) {
    const bool isPrefixed = !isRaw && isLikeFormula(shownText);
    if (!isPrefixed && shownText.find_first_of(",\"") == std::string::npos) {
        line += shownText;
        return;
    }
    line += '"';
    if (isPrefixed) line += '\'';
    for (const char c : shownText) {
        if (c == '"') line += '"';
        line += c;
    }
    line += '"';
}

void appendCsvVector(std::string& line, const double vector[3]) {
    for (int i = 0; i < 3; ++i) {
        line += ',';
        appendNumber(line, vector[i]);
    }
}

}  // namespace

void printPlacements(const CTrvAssemblyData& assembly, std::ostream& out) {
    OutputBuffer buffer(out);
    forEachPlacement(assembly, [&](const ComponentBody& component, const std::string&,
                                   const Placement& placement) {
        std::string& text = buffer.text();
        appendShown(text, component.geometryFileName);
        text += ", at ";
        appendRoundedVector(text, placement.translation);
        appendAxes(text, placement.vec1, placement.vec2, placement.vec3);
        text += '\n';
        buffer.endPiece();
    });
}

void printCsvHeader(std::ostream& out) {
    out << "file,x,y,z,vec1x,vec1y,vec1z,vec2x,vec2y,vec2z,vec3x,vec3y,vec3z,assembly,path\r\n";
}

void printPlacementsAsCsv(const QString& name, const CTrvAssemblyData& assembly, bool isRaw,
                          std::ostream& out) {
    std::string nameCell;
    appendCsvText(nameCell, shown(displayName(name)).toStdString(), isRaw);
    OutputBuffer buffer(out);
    std::string fileName;
    forEachPlacement(assembly, [&](const ComponentBody& component, const std::string& path,
                                   const Placement& placement) {
        std::string& text = buffer.text();
        fileName.clear();
        appendShown(fileName, component.geometryFileName);
        appendCsvText(text, fileName, isRaw);
        appendCsvVector(text, placement.translation);
        appendCsvVector(text, placement.vec1);
        appendCsvVector(text, placement.vec2);
        appendCsvVector(text, placement.vec3);
        text.append(1, ',').append(nameCell).append(1, ',');
        appendCsvText(text, path, isRaw);
        text += "\r\n";
        buffer.endPiece();
    });
}

void writePlacements(const QString& name, const CTrvAssemblyData& assembly, JsonWriter& json) {
    json.add("file", name);
    json.beginArray("placements");
    forEachPlacement(assembly, [&](const ComponentBody& component, const std::string& path,
                                   const Placement& placement) {
        json.beginObject();
        json.addText("geometryFile", component.geometryFileName);
        json.addUtf8("path", path);
        addFrame(json, placement.translation, placement.vec1, placement.vec2, placement.vec3);
        json.endObject();
    });
    json.endArray();
}

}  // namespace trv::cli
