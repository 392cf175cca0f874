#include <cli/input_files.h>
#include <cli/placement_list.h>
#include <trvfiles/assembly/flattening.h>
#include <trvfiles/text/text_conversion.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace trv::cli {
namespace {

// The path of the component that is visited, as `assembly diff` prints it.
class PlacementPath {
public:
    /// REQUIRES: is called for each component of flatten() in turn.
    void moveTo(const PlacedComponent& placed) {
        lengths_.resize(placed.level + 1);
        if (placed.level == 0) {
            text_ = placed.component.name.empty() ? "(root)" : "";
            appendShown(text_, placed.component.name);
        } else {
            text_.resize(lengths_[placed.level - 1]);
            text_ += '/';
            appendShown(text_, placed.component.name);
            text_ += '[';
            appendInteger(text_, static_cast<long long>(placed.index));
            text_ += ']';
        }
        lengths_.back() = text_.size();
    }

    const std::string& text() const { return text_; }

private:
    std::string text_;
    // Of the paths of the component and of those above it.
    std::vector<std::size_t> lengths_;
};

template <class Visit>
void flattenAssembly(const CTrvAssemblyData& assembly, Visit visit) {
    flatten(ComponentBody::of(assembly.getRootComponent()), Math::XForm3Gen<double>(), visit);
}

// Calls `visit(component, path)` for each entry of the flattened list.
template <class Visit>
void forEachEntry(const CTrvAssemblyData& assembly, Visit visit) {
    PlacementPath path;
    flattenAssembly(assembly, [&](const PlacedComponent& placed) {
        path.moveTo(placed);
        if (placed.isEntry()) visit(placed, path.text());
    });
}

// The axis vectors and the translation are the rows of the matrix.
const double* rowOf(const PlacedComponent& placed, int row) {
    return placed.world.data() + std::ptrdiff_t{4} * row;
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
    flattenAssembly(assembly, [&](const PlacedComponent& placed) {
        if (!placed.isEntry()) return;
        std::string& text = buffer.text();
        appendShown(text, placed.component.geometryFileName);
        text += ", at ";
        appendRoundedVector(text, rowOf(placed, 3));
        appendAxes(text, rowOf(placed, 0), rowOf(placed, 1), rowOf(placed, 2));
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
    forEachEntry(assembly, [&](const PlacedComponent& placed, const std::string& path) {
        std::string& text = buffer.text();
        fileName.clear();
        appendShown(fileName, placed.component.geometryFileName);
        appendCsvText(text, fileName, isRaw);
        for (const int row : {3, 0, 1, 2})
            appendCsvVector(text, rowOf(placed, row));
        text.append(1, ',').append(nameCell).append(1, ',');
        appendCsvText(text, path, isRaw);
        text += "\r\n";
        buffer.endPiece();
    });
}

void writePlacements(const QString& name, const CTrvAssemblyData& assembly, JsonWriter& json) {
    json.add("file", name);
    json.beginArray("placements");
    forEachEntry(assembly, [&](const PlacedComponent& placed, const std::string& path) {
        json.beginObject();
        json.addText("geometryFile", placed.component.geometryFileName);
        json.addUtf8("path", path);
        addFrame(json, rowOf(placed, 3), rowOf(placed, 0), rowOf(placed, 1), rowOf(placed, 2));
        json.endObject();
    });
    json.endArray();
}

}  // namespace trv::cli
