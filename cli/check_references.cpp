#include <cli/assembly_walk.h>
#include <cli/check_references.h>
#include <cli/diagnostic_places.h>
#include <cli/reference_directory.h>
#include <cli/xml_tags.h>
#include <trvfiles/assembly/assembly_names.h>
#include <trvfiles/text/text_conversion.h>

#include <QHash>
#include <QSet>

#include <utility>

namespace trv::cli {
namespace {

// The places at which the "File" elements first have these names. One walk, whatever their number.
QHash<QString, Place> placesOfFiles(const SourceText& source, const QSet<QString>& wanted) {
    const QLatin1String file(names::file);
    const QLatin1String attributeOfName(names::name);
    QHash<QString, Place> places;
    XmlTag tag;
    for (XmlTags tags(source.text()); places.size() < wanted.size() && tags.next(tag);) {
        if (tag.kind == XmlTag::Kind::end || tag.name != file) continue;
        for (const XmlAttribute& attribute : tag.attributes) {
            if (attribute.name != attributeOfName) continue;
            const QString name = valueOf(attribute);
            if (!wanted.contains(name) || places.contains(name)) continue;
            places.insert(name, source.placeOf(attribute.valuePosition));
        }
    }
    return places;
}

}  // namespace

References missingReferences(const QString& file, const CTrvAssemblyData& assembly) {
    const ReferenceDirectory directory(file);
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
    const ReferenceDirectory directory(file);
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

std::vector<Place> placesOf(const SourceText& source, const References& references) {
    QSet<QString> files;
    for (const Reference& reference : references) {
        if (reference.key.isEmpty()) files.insert(reference.name);
    }
    const QHash<QString, Place> placesByName = placesOfFiles(source, files);
    std::vector<Place> places;
    places.reserve(references.size());
    for (const Reference& reference : references) {
        places.push_back(reference.key.isEmpty()
                             ? placesByName.value(reference.name)
                             : placeOfValue(source, reference.section, reference.key));
    }
    return places;
}

QString textOf(const Reference& reference) {
    return QStringLiteral("%1 \"%2\" does not exist").arg(reference.what, reference.name);
}

}  // namespace trv::cli
