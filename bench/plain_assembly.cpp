#include <bench/comparison.h>
#include <bench/plain_assembly.h>

#include <QDomDocument>
#include <QFile>

#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <string_view>

namespace trv::bench {
namespace {

constexpr double tolerance = 1e-6;
using Matrix = std::array<double, 16>;

PlainVector readVector(const QDomElement& parent, const QString& tag) {
    const QDomElement element = parent.firstChildElement(tag);
    return {element.attribute(QStringLiteral("x")).toDouble(),
            element.attribute(QStringLiteral("y")).toDouble(),
            element.attribute(QStringLiteral("z")).toDouble()};
}

PlainComponent readComponent(const QDomElement& element) {
    PlainComponent component;
    component.name = element.attribute(QStringLiteral("name")).toStdString();
    component.comment = element.attribute(QStringLiteral("comment")).toStdString();
    component.enabled = element.attribute(QStringLiteral("enabled")) == QLatin1String("1");
    component.translation = readVector(element, QStringLiteral("Translation"));
    const QDomElement orientation = element.firstChildElement(QStringLiteral("Orientation"));
    component.vec1 = readVector(orientation, QStringLiteral("vec1"));
    component.vec2 = readVector(orientation, QStringLiteral("vec2"));
    component.vec3 = readVector(orientation, QStringLiteral("vec3"));
    const QDomElement data = element.firstChildElement(QStringLiteral("Data"));
    const QDomElement file = data.firstChildElement(QStringLiteral("File"));
    component.geometryFile = file.attribute(QStringLiteral("name")).toStdString();
    for (QDomElement child = data.firstChildElement(QStringLiteral("Component")); !child.isNull();
         child = child.nextSiblingElement(QStringLiteral("Component"))) {
        component.components.push_back(readComponent(child));
    }
    return component;
}

// Writes elements with an indentation of three blanks, in blocks.
class TextWriter {
public:
    explicit TextWriter(std::FILE* file) : file_(file) { text_.reserve(2 * blockSize); }

    // Writes one line, whose parts are texts and numbers.
    template <class... Parts>
    void line(int depth, const Parts&... parts) {
        text_.append(static_cast<std::size_t>(3 * depth), ' ');
        (append(parts), ...);
        text_ += '\n';
        if (text_.size() >= blockSize) flush();
    }

    void vector(int depth, const char* tag, const PlainVector& vector) {
        line(depth, "<", tag, " x=\"", vector[0], "\" y=\"", vector[1], "\" z=\"", vector[2],
             "\"/>");
    }

    bool flush() {
        isWritten_ =
            isWritten_ && std::fwrite(text_.data(), 1, text_.size(), file_) == text_.size();
        text_.clear();
        return isWritten_;
    }

private:
    static constexpr std::size_t blockSize = 65536;

    void append(std::string_view part) { text_ += part; }
    void append(double number) {
        char digits[32];
        text_.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
    }

    std::FILE* file_;
    std::string text_;
    bool isWritten_ = true;
};

void writeComponent(TextWriter& writer, int depth, const PlainComponent& component) {
    writer.line(depth, "<Component name=\"", component.name, "\" comment=\"", component.comment,
                "\" enabled=\"", component.enabled ? "1" : "0", "\">");
    writer.vector(depth + 1, "Translation", component.translation);
    writer.line(depth + 1, "<Orientation>");
    writer.vector(depth + 2, "vec1", component.vec1);
    writer.vector(depth + 2, "vec2", component.vec2);
    writer.vector(depth + 2, "vec3", component.vec3);
    writer.line(depth + 1, "</Orientation>");
    if (component.geometryFile.empty()) {
        writer.line(depth + 1, "<Data number=\"", std::to_string(component.components.size()),
                    "\">");
        for (const PlainComponent& child : component.components)
            writeComponent(writer, depth + 2, child);
    } else {
        writer.line(depth + 1, "<Data number=\"1\">");
        writer.line(depth + 2, "<File name=\"", component.geometryFile, "\"/>");
    }
    writer.line(depth + 1, "</Data>");
    writer.line(depth, "</Component>");
}

Matrix placement(const PlainComponent& component) {
    const PlainVector& a = component.vec1;
    const PlainVector& b = component.vec2;
    const PlainVector& c = component.vec3;
    const PlainVector& t = component.translation;
    return {a[0], a[1], a[2], 0, b[0], b[1], b[2], 0, c[0], c[1], c[2], 0, t[0], t[1], t[2], 1};
}

Matrix product(const Matrix& left, const Matrix& right) {
    Matrix result = {};
    for (std::size_t row = 0; row < 4; ++row) {
        for (std::size_t column = 0; column < 4; ++column) {
            for (std::size_t k = 0; k < 4; ++k)
                result[4 * row + column] += left[4 * row + k] * right[4 * k + column];
        }
    }
    return result;
}

void flatten(const PlainComponent& component, const Matrix& parent,
             std::vector<PlainPlaced>& list) {
    for (const PlainComponent& child : component.components) {
        if (!child.enabled) continue;
        const Matrix world = product(placement(child), parent);
        if (!child.geometryFile.empty()) {
            list.push_back({child.geometryFile,
                            {world[0], world[1], world[2]},
                            {world[4], world[5], world[6]},
                            {world[8], world[9], world[10]},
                            {world[12], world[13], world[14]}});
        }
        flatten(child, world, list);
    }
}

bool areClose(const PlainVector& one, const PlainVector& other) {
    return std::fabs(one[0] - other[0]) <= tolerance && std::fabs(one[1] - other[1]) <= tolerance &&
           std::fabs(one[2] - other[2]) <= tolerance;
}

bool areEqual(const PlainComponent& one, const PlainComponent& other) {
    if (one.name != other.name || one.comment != other.comment || one.enabled != other.enabled ||
        one.geometryFile != other.geometryFile || !areClose(one.translation, other.translation) ||
        !areClose(one.vec1, other.vec1) || !areClose(one.vec2, other.vec2) ||
        one.components.size() != other.components.size()) {
        return false;
    }
    for (std::size_t i = 0; i < one.components.size(); ++i) {
        if (!areEqual(one.components[i], other.components[i])) return false;
    }
    return true;
}

}  // namespace

PlainAssembly plainSample(int leaves) {
    constexpr int leavesOfGroup = 100;
    constexpr int maxLeaves = 100000;
    PlainAssembly assembly;
    assembly.dimension = {480, 300, 145};
    assembly.root.name = "Set-up";
    for (int i = 0; i < leaves; ++i) {
        const int number = i * (maxLeaves / leaves);
        std::vector<PlainComponent>& groups = assembly.root.components;
        if (i % leavesOfGroup == 0) {
            PlainComponent& group = groups.emplace_back();
            group.name = "Group " + std::to_string(number / leavesOfGroup);
            group.translation = {number * 0.5, 12.25, 30};
        }
        PlainComponent& leaf = groups.back().components.emplace_back();
        const double angle = 0.001 * number;
        leaf.name = "Part " + std::to_string(number);
        leaf.comment = "clamped at " + std::to_string(number % 7);
        leaf.translation = {0.1 * number, -0.25 * number, 1.0 / (number + 1)};
        leaf.vec1 = {std::cos(angle), std::sin(angle), 0};
        leaf.vec2 = {-std::sin(angle), std::cos(angle), 0};
        leaf.geometryFile = "geometry/part-" + std::to_string(i % 500) + ".stl";
    }
    return assembly;
}

PlainAssembly readPlainly(const std::string& path) {
    QFile file(QString::fromStdString(path));
    QDomDocument document;
    require(file.open(QIODevice::ReadOnly) && document.setContent(&file), "reading with the DOM");
    const QDomElement root = document.documentElement();
    PlainAssembly assembly;
    assembly.dimension = readVector(root.firstChildElement(QStringLiteral("Attributs")),
                                    QStringLiteral("Dimension"));
    assembly.root = readComponent(root.firstChildElement(QStringLiteral("Component")));
    return assembly;
}

void writePlainly(const std::string& path, const PlainAssembly& assembly) {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    require(file != nullptr, "opening a file to write by hand");
    TextWriter writer(file);
    writer.line(0, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
    writer.line(0, "<ComponentInfo version=\"1\">");
    writer.line(1, "<Attributs>");
    writer.vector(2, "Dimension", assembly.dimension);
    writer.line(1, "</Attributs>");
    writeComponent(writer, 1, assembly.root);
    writer.line(0, "</ComponentInfo>");
    const bool isWritten = writer.flush();
    require(std::fclose(file) == 0 && isWritten, "writing by hand");
}

std::vector<PlainPlaced> flattenPlainly(const PlainAssembly& assembly) {
    std::vector<PlainPlaced> list;
    flatten(assembly.root, placement(assembly.root), list);
    return list;
}

bool areEqual(const PlainAssembly& one, const PlainAssembly& other) {
    return areClose(one.dimension, other.dimension) && areEqual(one.root, other.root);
}

}  // namespace trv::bench
