#include <fuzz/harness/assembly_record.h>
#include <fuzz/harness/require.h>
#include <trvfiles/assembly/assembly_reader.h>
#include <trvfiles/assembly/component_body.h>
#include <trvfiles/assembly/document_parser.h>
#include <trvfiles/assembly/dom_tree.h>
#include <trvfiles/assembly/xml_characters.h>

#include <QBuffer>

#include <type_traits>
#include <vector>

namespace trv::fuzz {
namespace {

// Attributes are not checked: they may hold every character that Qt accepts. Elements have no
// value.
void requireXmlCharactersOutsideTags(const QDomDocument& document) {
    walkDocument(
        document,
        [](const QDomNode& node, int) {
            const QString value = node.nodeValue();
            for (const QChar unit : value)
                require(isXmlCharacter(unit.unicode()),
                        "a text contains only characters that XML allows");
        },
        [](const QDomNode&, int) {});
}

template <class Object>
void appendBytes(std::string& bytes, const Object& object) {
    static_assert(std::is_trivially_copyable_v<Object>);
    bytes.append(reinterpret_cast<const char*>(&object), sizeof object);
}

void appendText(std::string& bytes, const std::string& text) {
    appendBytes(bytes, text.size());
    bytes += text;
}

}  // namespace

Reading readByDom(const QByteArray& text) {
    QBuffer device;
    device.setData(text);
    device.open(QIODevice::ReadOnly);
    DomTree tree;
    Reading reading;
    if (!parseDocument(device, tree, &reading.fault)) {
        require(!reading.fault.reason.empty() && reading.fault.line > 0, "a fault has its place");
        return reading;
    }
    requireXmlCharactersOutsideTags(tree.document);
    reading.status = readDocument(tree.document, reading.version, reading.data, &reading.fault);
    require(reading.fault.reason.empty() == (reading.status == eFileIOSuccess),
            "every failure has a reason");
    return reading;
}

std::string bytesOf(const CTrvAssemblyData& data) {
    std::string bytes;
    double dimension[3];
    data.getDimension(dimension);
    appendBytes(bytes, dimension);
    std::vector<const ComponentBody*> open = {&ComponentBody::of(data.getRootComponent())};
    while (!open.empty()) {
        const ComponentBody& component = *open.back();
        open.pop_back();
        appendText(bytes, component.name);
        appendText(bytes, component.comment);
        appendText(bytes, component.geometryFileName);
        appendBytes(bytes, component.enabled);
        appendBytes(bytes, component.translation);
        appendBytes(bytes, component.vec1);
        appendBytes(bytes, component.vec2);
        appendBytes(bytes, component.vec3);
        appendBytes(bytes, component.components.size());
        for (const ComponentBody& child : component.components)
            open.push_back(&child);
    }
    return bytes;
}

}  // namespace trv::fuzz
