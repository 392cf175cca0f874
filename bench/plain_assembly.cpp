#include <bench/comparison.h>
#include <bench/plain_assembly.h>

#include <QDomDocument>
#include <QFile>

#include <cmath>
#include <cstddef>

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

void appendVector(QDomDocument& document, QDomElement& parent, const QString& tag,
                  const PlainVector& vector) {
    QDomElement element = document.createElement(tag);
    element.setAttribute(QStringLiteral("x"), vector[0]);
    element.setAttribute(QStringLiteral("y"), vector[1]);
    element.setAttribute(QStringLiteral("z"), vector[2]);
    parent.appendChild(element);
}

void appendComponent(QDomDocument& document, QDomElement& parent, const PlainComponent& component) {
    QDomElement element = document.createElement(QStringLiteral("Component"));
    element.setAttribute(QStringLiteral("name"), QString::fromStdString(component.name));
    element.setAttribute(QStringLiteral("comment"), QString::fromStdString(component.comment));
    element.setAttribute(QStringLiteral("enabled"), component.enabled ? 1 : 0);
    appendVector(document, element, QStringLiteral("Translation"), component.translation);
    QDomElement orientation = document.createElement(QStringLiteral("Orientation"));
    appendVector(document, orientation, QStringLiteral("vec1"), component.vec1);
    appendVector(document, orientation, QStringLiteral("vec2"), component.vec2);
    appendVector(document, orientation, QStringLiteral("vec3"), component.vec3);
    element.appendChild(orientation);
    QDomElement data = document.createElement(QStringLiteral("Data"));
    if (component.geometryFile.empty()) {
        data.setAttribute(QStringLiteral("number"),
                          static_cast<qulonglong>(component.components.size()));
        for (const PlainComponent& child : component.components)
            appendComponent(document, data, child);
    } else {
        data.setAttribute(QStringLiteral("number"), 1);
        QDomElement file = document.createElement(QStringLiteral("File"));
        file.setAttribute(QStringLiteral("name"), QString::fromStdString(component.geometryFile));
        data.appendChild(file);
    }
    element.appendChild(data);
    parent.appendChild(element);
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
    PlainAssembly assembly;
    assembly.dimension = {480, 300, 145};
    assembly.root.name = "Set-up";
    for (int i = 0; i < leaves; ++i) {
        std::vector<PlainComponent>& groups = assembly.root.components;
        if (i % leavesOfGroup == 0) {
            PlainComponent& group = groups.emplace_back();
            group.name = "Group " + std::to_string(i / leavesOfGroup);
            group.translation = {i * 0.5, 12.25, 30};
        }
        PlainComponent& leaf = groups.back().components.emplace_back();
        const double angle = 0.001 * i;
        leaf.name = "Part " + std::to_string(i);
        leaf.comment = "clamped at " + std::to_string(i % 7);
        leaf.translation = {0.1 * i, -0.25 * i, 1.0 / (i + 1)};
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
    QDomDocument document;
    document.appendChild(document.createProcessingInstruction(
        QStringLiteral("xml"), QStringLiteral("version=\"1.0\" encoding=\"UTF-8\"")));
    QDomElement root = document.createElement(QStringLiteral("ComponentInfo"));
    root.setAttribute(QStringLiteral("version"), 1);
    QDomElement attributes = document.createElement(QStringLiteral("Attributs"));
    appendVector(document, attributes, QStringLiteral("Dimension"), assembly.dimension);
    root.appendChild(attributes);
    appendComponent(document, root, assembly.root);
    document.appendChild(root);

    const QByteArray text = document.toString(3).toUtf8();
    QFile file(QString::fromStdString(path));
    require(
        file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && file.write(text) == text.size(),
        "writing with the DOM");
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
