#include <cli/assembly_walk.h>
#include <cli/check_references.h>
#include <cli/diagnostic_places.h>
#include <cli/input_files.h>
#include <cli/xml_tags.h>
#include <trvfiles/assembly/assembly_names.h>
#include <trvfiles/support/platform_directories.h>
#include <trvfiles/text/path_resolution.h>
#include <trvfiles/text/text_conversion.h>

#include <QFileInfo>
#include <QSet>

#include <utility>

namespace trv::cli {
namespace {

class Directory {
public:
    // @param file  the name of a file in the directory
    explicit Directory(const QString& file) : path_({QFileInfo(resolved(file)).path(), true}) {}

    bool hasFile(const HostPath& name) const {
        const QString path = resolvedPath(path_, name);
        return isOpenable(path) &&
               platform::kind_of(systemPath(path)) == platform::file_kind::other;
    }

private:
    const HostPath path_;
};

// The first value of a "File" that is the name.
Place placeOfFile(const SourceText& source, const QString& name) {
    const QLatin1String file(names::file);
    const QLatin1String attributeOfName(names::name);
    XmlTag tag;
    for (XmlTags tags(source.text()); tags.next(tag);) {
        if (tag.kind == XmlTag::Kind::end || tag.name != file) continue;
        for (const XmlAttribute& attribute : tag.attributes) {
            if (attribute.name == attributeOfName && valueOf(attribute) == name) {
                return source.placeOf(attribute.valuePosition);
            }
        }
    }
    return {};
}

}  // namespace

References missingReferences(const QString& file, const CTrvAssemblyData& assembly) {
    const Directory directory(file);
    QSet<QString> known;
    References missing;
    forEachComponent(assembly, [&](const ComponentBody& component, std::size_t) {
        if (component.geometryFileName.empty()) return;
        const HostPath name = pathFromNarrow(component.geometryFileName);
        if (known.contains(name.text)) return;
        known.insert(name.text);
        if (directory.hasFile(name)) return;
        missing.push_back({QStringLiteral("geometry file"), name.text, {}, {}});
    });
    return missing;
}

References missingReferences(const QString& file, const CMachineContextData& context) {
    const Directory directory(file);
    References missing;
    const auto check = [&](const char* what, const std::wstring& name, const char* section,
                           const char* key) {
        const HostPath path = pathFromWide(name);
        if (path.text.isEmpty() || directory.hasFile(path)) return;
        missing.push_back({QString::fromLatin1(what), path.text, QString::fromLatin1(section),
                           QString::fromLatin1(key)});
    };
    check("machine file", context.getMachineNameW(), "machine", "name");
    check("position file", context.getMachinePositionW(), "machine", "position");
    check("reference axis file", context.getReferenceAxisForOriginProgramW(), "postpro",
          "reference_axis");
    return missing;
}

Place placeOf(const SourceText& source, const Reference& reference) {
    return reference.key.isEmpty() ? placeOfFile(source, reference.name)
                                   : placeOfValue(source, reference.section, reference.key);
}

QString textOf(const Reference& reference) {
    return QStringLiteral("%1 \"%2\" does not exist").arg(reference.what, reference.name);
}

}  // namespace trv::cli
