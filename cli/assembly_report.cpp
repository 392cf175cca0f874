#include <cli/assembly_report.h>
#include <cli/assembly_walk.h>
#include <cli/text_output.h>
#include <trvfiles/text/text_conversion.h>

#include <QJsonArray>

#include <algorithm>
#include <iterator>

namespace trv::cli {
namespace {

constexpr double unitVectors[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};

bool isUnit(const double vector[3], int axis) {
    return std::equal(vector, vector + 3, unitVectors[axis]);
}

QString axesText(const double* vec1, const double* vec2, const double* vec3) {
    return QStringLiteral(", axes %1 / %2 / %3")
        .arg(roundedVectorText(vec1), roundedVectorText(vec2), roundedVectorText(vec3));
}

QString treeLine(const ComponentBody& component, std::size_t level) {
    constexpr int indentation = 2;
    QString line(static_cast<int>(level) * indentation, QLatin1Char(' '));
    line += component.name.empty() ? QStringLiteral("(no name)") : shown(component.name);
    if (!component.enabled) line += QStringLiteral(" (disabled)");
    if (!component.geometryFileName.empty()) {
        line += QStringLiteral(": ") + shown(component.geometryFileName);
    }
    line += QStringLiteral(", at ") + roundedVectorText(component.translation);
    if (!isUnit(component.vec1, 0) || !isUnit(component.vec2, 1) || !isUnit(component.vec3, 2)) {
        line += axesText(component.vec1, component.vec2, component.vec3);
    }
    if (!component.comment.empty()) line += QStringLiteral(" -- ") + shown(component.comment);
    return line + QLatin1Char('\n');
}

struct Placement {
    explicit Placement(const CComponentInfo& entry) : fileName(fromNarrow(entry.getFileName())) {
        entry.getTranslation(translation);
        entry.getOrientation(vec1, vec2, vec3);
    }

    QString fileName;
    const double* translation = nullptr;
    const double* vec1 = nullptr;
    const double* vec2 = nullptr;
    const double* vec3 = nullptr;
};

// shown() escapes line ends, so each line is one row.
QString csvField(const QString& text) {
    QString field = shown(text);
    if (!field.contains(QLatin1Char(',')) && !field.contains(QLatin1Char('"'))) return field;
    field.replace(QLatin1Char('"'), QStringLiteral("\"\""));
    return QStringLiteral("\"%1\"").arg(field);
}

QString csvVector(const double vector[3]) {
    return QStringLiteral(",%1,%2,%3")
        .arg(numberText(vector[0]), numberText(vector[1]), numberText(vector[2]));
}

QJsonObject componentJson(const ComponentBody& component, std::size_t level, QJsonValue parent) {
    return {
        {QStringLiteral("level"), static_cast<qint64>(level)},
        {QStringLiteral("parent"), parent},
        {QStringLiteral("name"), fromNarrow(component.name)},
        {QStringLiteral("comment"), fromNarrow(component.comment)},
        {QStringLiteral("enabled"), component.enabled},
        {QStringLiteral("geometryFile"), component.geometryFileName.empty()
                                             ? QJsonValue()
                                             : QJsonValue(fromNarrow(component.geometryFileName))},
        {QStringLiteral("translation"), jsonNumbers(component.translation, 3)},
        {QStringLiteral("vec1"), jsonNumbers(component.vec1, 3)},
        {QStringLiteral("vec2"), jsonNumbers(component.vec2, 3)},
        {QStringLiteral("vec3"), jsonNumbers(component.vec3, 3)},
    };
}

}  // namespace

AssemblyCounts countsOf(const CTrvAssemblyData& assembly) {
    AssemblyCounts counts;
    forEachComponent(assembly, [&](const ComponentBody&, std::size_t) { ++counts.components; });
    counts.componentNumber = assembly.getComponentNumber();
    counts.placedFiles = assembly.getComponentFileList().size();
    return counts;
}

void printAssembly(const QString& name, const CTrvAssemblyData& assembly, std::ostream& out) {
    double size[3];
    assembly.getDimension(size);
    const AssemblyCounts counts = countsOf(assembly);
    const QString head =
        QStringLiteral(
            "Assembly file %1\n\n"
            "Dimension         %2 x %3 x %4\n"
            "Components        %5\n"
            "Component number  %6\n"
            "Placed files      %7\n\n")
            .arg(shown(name), roundedText(size[0]), roundedText(size[1]), roundedText(size[2]),
                 QString::number(counts.components), QString::number(counts.componentNumber),
                 QString::number(counts.placedFiles));
    out << qUtf8Printable(head);
    printTree(assembly, out);
}

void printTree(const CTrvAssemblyData& assembly, std::ostream& out) {
    forEachComponent(assembly, [&](const ComponentBody& component, std::size_t level) {
        out << qUtf8Printable(treeLine(component, level));
    });
}

QJsonObject assemblyJson(const QString& name, const CTrvAssemblyData& assembly) {
    double size[3];
    assembly.getDimension(size);
    const AssemblyCounts counts = countsOf(assembly);
    QJsonArray components;
    // The indices in the list of the current component and of those above it.
    std::vector<int> ancestors;
    forEachComponent(assembly, [&](const ComponentBody& component, std::size_t level) {
        ancestors.resize(level);
        components.append(componentJson(
            component, level, ancestors.empty() ? QJsonValue() : QJsonValue(ancestors.back())));
        ancestors.push_back(components.size() - 1);
    });
    return {
        {QStringLiteral("kind"), QStringLiteral("assembly")},
        {QStringLiteral("file"), name},
        {QStringLiteral("dimension"), jsonNumbers(size, 3)},
        {QStringLiteral("componentNumber"), static_cast<qint64>(counts.componentNumber)},
        {QStringLiteral("placedFiles"), static_cast<qint64>(counts.placedFiles)},
        {QStringLiteral("components"), components},
    };
}

void printPlacements(const CTrvAssemblyData& assembly, std::ostream& out) {
    for (const CComponentInfo& entry : assembly.getComponentFileList()) {
        const Placement placement(entry);
        const QString line =
            QStringLiteral("%1, at %2%3\n")
                .arg(shown(placement.fileName), roundedVectorText(placement.translation),
                     axesText(placement.vec1, placement.vec2, placement.vec3));
        out << qUtf8Printable(line);
    }
}

void printPlacementsAsCsv(const CTrvAssemblyData& assembly, std::ostream& out) {
    out << "file,x,y,z,vec1x,vec1y,vec1z,vec2x,vec2y,vec2z,vec3x,vec3y,vec3z\r\n";
    for (const CComponentInfo& entry : assembly.getComponentFileList()) {
        const Placement placement(entry);
        const QString line = csvField(placement.fileName) + csvVector(placement.translation) +
                             csvVector(placement.vec1) + csvVector(placement.vec2) +
                             csvVector(placement.vec3) + QStringLiteral("\r\n");
        out << qUtf8Printable(line);
    }
}

QJsonObject placementsJson(const QString& name, const CTrvAssemblyData& assembly) {
    QJsonArray placements;
    for (const CComponentInfo& entry : assembly.getComponentFileList()) {
        const Placement placement(entry);
        placements.append(QJsonObject{
            {QStringLiteral("geometryFile"), placement.fileName},
            {QStringLiteral("translation"), jsonNumbers(placement.translation, 3)},
            {QStringLiteral("vec1"), jsonNumbers(placement.vec1, 3)},
            {QStringLiteral("vec2"), jsonNumbers(placement.vec2, 3)},
            {QStringLiteral("vec3"), jsonNumbers(placement.vec3, 3)},
        });
    }
    return {{QStringLiteral("file"), name}, {QStringLiteral("placements"), placements}};
}

QString assemblySummary(const CTrvAssemblyData& assembly) {
    const AssemblyCounts counts = countsOf(assembly);
    return QStringLiteral("assembly, %1, %2")
        .arg(counted(counts.components, QStringLiteral("component"), QStringLiteral("components")),
             counted(counts.placedFiles, QStringLiteral("placed file"),
                     QStringLiteral("placed files")));
}

}  // namespace trv::cli
