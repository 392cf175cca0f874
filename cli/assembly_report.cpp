#include <cli/assembly_report.h>
#include <cli/assembly_walk.h>
#include <cli/input_files.h>

#include <limits>
#include <vector>

namespace trv::cli {
namespace {

void writeComponent(const SelectedComponent& entry, long long parent, JsonWriter& json) {
    const ComponentBody& component = *entry.component;
    json.beginObject();
    json.addText("comment", component.comment);
    json.addBoolean("enabled", component.enabled);
    if (component.geometryFileName.empty()) {
        json.addNull("geometryFile");
    } else {
        json.addText("geometryFile", component.geometryFileName);
    }
    json.addInteger("level", entry.level);
    json.addText("name", component.name);
    if (parent < 0) {
        json.addNull("parent");
    } else {
        json.addInteger("parent", parent);
    }
    addFrame(json, component.translation, component.vec1, component.vec2, component.vec3);
    json.endObject();
}

void writeComponents(const std::vector<SelectedComponent>& components, JsonWriter& json) {
    json.beginArray("components");
    // The indices in the list of the current component and of those above it.
    std::vector<long long> ancestors;
    long long index = 0;
    for (const SelectedComponent& entry : components) {
        ancestors.resize(entry.level);
        writeComponent(entry, ancestors.empty() ? -1 : ancestors.back(), json);
        ancestors.push_back(index++);
    }
    json.endArray();
}

}  // namespace

AssemblyCounts countsOf(const CTrvAssemblyData& assembly) {
    constexpr std::size_t none = std::numeric_limits<std::size_t>::max();
    AssemblyCounts counts;
    // The level of the disabled component that contains the current one.
    std::size_t disabledLevel = none;
    forEachComponent(assembly, [&](const ComponentBody& component, std::size_t level) {
        ++counts.components;
        if (level <= disabledLevel) disabledLevel = component.enabled ? none : level;
        if (disabledLevel == none && !component.geometryFileName.empty()) ++counts.placedFiles;
    });
    counts.componentNumber = assembly.getComponentNumber();
    return counts;
}

void printCounts(const CTrvAssemblyData& assembly, std::ostream& out) {
    const AssemblyCounts counts = countsOf(assembly);
    out << "Components        " << counts.components << "\nComponent number  "
        << counts.componentNumber << "\nPlaced files      " << counts.placedFiles << '\n';
}

void printAssemblyHead(const QString& name, const CTrvAssemblyData& assembly, std::ostream& out) {
    double size[3];
    assembly.getDimension(size);
    out << qUtf8Printable(
        headingText(QStringLiteral("Assembly file"), name) +
        QStringLiteral("Dimension         %1 x %2 x %3\n")
            .arg(roundedText(size[0]), roundedText(size[1]), roundedText(size[2])));
    printCounts(assembly, out);
}

std::size_t writeAssembly(const QString& name, const CTrvAssemblyData& assembly,
                          const ComponentSelection* selection, JsonWriter& json) {
    double size[3];
    assembly.getDimension(size);
    const AssemblyCounts counts = countsOf(assembly);
    json.addInteger("componentCount", static_cast<long long>(counts.components));
    json.addInteger("componentNumber", static_cast<long long>(counts.componentNumber));
    std::size_t listed = 0;
    if (selection != nullptr) {
        const std::vector<SelectedComponent> components = selectComponents(assembly, *selection);
        listed = components.size();
        writeComponents(components, json);
    }
    json.addNumbers("dimension", size, 3);
    json.add("file", name);
    json.add("kind", QStringLiteral("assembly"));
    json.addInteger("placedFiles", static_cast<long long>(counts.placedFiles));
    return listed;
}

QString assemblySummary(const CTrvAssemblyData& assembly) {
    const AssemblyCounts counts = countsOf(assembly);
    return QStringLiteral("assembly, %1, %2")
        .arg(counted(counts.components, QStringLiteral("component"), QStringLiteral("components")),
             counted(counts.placedFiles, QStringLiteral("placed file"),
                     QStringLiteral("placed files")));
}

}  // namespace trv::cli
