// An assembly document of any bytes. It is screened in pieces, read, written and read again.

#include <fuzz/harness/require.h>
#include <fuzz/targets.h>
#include <tests/assembly/dom_writer.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/assembly/assembly_reader.h>
#include <trvfiles/assembly/assembly_writer.h>
#include <trvfiles/assembly/block_writer.h>
#include <trvfiles/assembly/component_body.h>
#include <trvfiles/assembly/document_parser.h>
#include <trvfiles/assembly/dom_tree.h>
#include <trvfiles/assembly/xml_characters.h>
#include <trvfiles/assembly/xml_screen.h>
#include <trvfiles/support/CFileFault.h>

#include <QBuffer>
#include <QByteArray>
#include <QDomImplementation>

#include <string>
#include <string_view>
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

// What reading a document by the DOM gives.
struct Reading {
    EFileIOStatus status = eFileIOContentError;
    int version = 0;
    CTrvAssemblyData data;
    CFileFault fault;
};

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

template <class Object>
void appendBytes(std::string& bytes, const Object& object) {
    static_assert(std::is_trivially_copyable_v<Object>);
    bytes.append(reinterpret_cast<const char*>(&object), sizeof object);
}

void appendText(std::string& bytes, const std::string& text) {
    appendBytes(bytes, text.size());
    bytes += text;
}

// All of a record, its numbers bit for bit: comparing records allows for tolerances.
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

// What the scanner accepts, the DOM reads alike. Of the rest the scanner leaves the record alone.
void requireBothReadersAgree(const QByteArray& text, const Reading& dom) {
    for (const Accepted accepted : {Accepted::complete, Accepted::unaltered}) {
        QBuffer device;
        device.setData(text);
        device.open(QIODevice::ReadOnly);
        CTrvAssemblyData data;
        int version = 0;
        if (!readPlainDocument(device, accepted, version, data)) {
            require(bytesOf(data) == bytesOf(CTrvAssemblyData()), "the record is unchanged");
            continue;
        }
        require(dom.status == eFileIOSuccess, "both readers accept the document");
        require(version == dom.version, "both readers find the same version");
        require(bytesOf(data) == bytesOf(dom.data), "both readers build the same record");
        require(accepted == Accepted::complete || dom.fault.notes.empty(),
                "a document about which there is a note is not unaltered");
    }
}

bool writeText(const CTrvAssemblyData& data, QByteArray& text) {
    if (!isWritable(data)) return false;
    std::string written;
    BlockWriter out([&written](std::string_view block) {
        written += block;
        return true;
    });
    require(writeAssembly(data, out), "a writable record is written");
    text = QByteArray::fromStdString(written);
    return true;
}

void requireBothWritersAgree(const CTrvAssemblyData& data) {
    DomTree tree;
    std::string expected;
    const bool isWritten = testing::writeByDom(data, tree, expected);
    QByteArray text;
    require(writeText(data, text) == isWritten, "both writers refuse the same records");
    require(!isWritten || text.toStdString() == expected, "both writers write the same bytes");
}

struct Screened {
    QString passed;
    XmlScreen::Refusal refusal = XmlScreen::Refusal::none;
    XmlScreen::Position refusedAt;
    uint refusedCharacter = 0;

    bool operator==(const Screened& other) const {
        return passed == other.passed && refusal == other.refusal &&
               refusedAt.line == other.refusedAt.line &&
               refusedAt.column == other.refusedAt.column &&
               refusedCharacter == other.refusedCharacter;
    }
};

Screened screened(const QString& text, int pieceLength) {
    XmlScreen screen(maxNesting);
    QString passed;
    for (int start = 0; start < text.size() && screen.refusal() == XmlScreen::Refusal::none;
         start += pieceLength) {
        passed += screen.pass(text.mid(start, pieceLength));
    }
    if (screen.refusal() == XmlScreen::Refusal::none) passed += screen.rest();
    return {passed, screen.refusal(), screen.refusedAt(), screen.refusedCharacter()};
}

void requirePiecesMakeNoDifference(const QString& text) {
    const Screened whole = screened(text, text.size() + 1);
    require(whole == screened(text, 1), "the screened text does not depend on the pieces");
    require(whole.refusal != XmlScreen::Refusal::none || whole.passed.size() == text.size(),
            "the screen keeps the length");
    if (whole.refusal != XmlScreen::Refusal::character) return;
    const auto unit = static_cast<ushort>(whole.refusedCharacter);
    require(!isXmlCharacter(unit), "a character that XML allows is not rejected");
    require(text.contains(QChar(unit)) || text.contains(QLatin1String("&#")),
            "a rejected character is in the text");
}

// Content that a file cannot hold, so the record is rejected, and content that a file holds only in
// part.
struct Contents {
    bool hasEmptyComponent = false;
    bool hasNoncharacter = false;
    bool hasZeroInText = false;
};

Contents contentsOf(const CTrvAssemblyData& data) {
    Contents contents;
    std::vector<CTrvAssemblyComponentData> open = {data.getRootComponent()};
    while (!open.empty()) {
        const CTrvAssemblyComponentData component = std::move(open.back());
        open.pop_back();
        std::vector<CTrvAssemblyComponentData> children = component.getComponents();
        const std::string file = component.getGeometryFileName();
        contents.hasEmptyComponent |= file.empty() && children.empty();
        const std::string texts = component.getName() + component.getComment() + file;
        contents.hasNoncharacter |= texts.find("\xEF\xBF\xBE") != std::string::npos ||
                                    texts.find("\xEF\xBF\xBF") != std::string::npos;
        contents.hasZeroInText |= texts.find('\0') != std::string::npos;
        for (CTrvAssemblyComponentData& child : children)
            open.push_back(std::move(child));
    }
    return contents;
}

}  // namespace

void checkAssemblyXml(std::string_view input) {
    QDomImplementation::setInvalidDataPolicy(QDomImplementation::ReturnNullNode);
    const QByteArray text(input.data(), static_cast<int>(input.size()));
    requirePiecesMakeNoDifference(QString::fromUtf8(text));

    const Reading reading = readByDom(text);
    const EFileIOStatus status = reading.status;
    require(status == eFileIOSuccess || status == eFileIOContentError ||
                status == eFileIOStructureError,
            "the status is 1, 4 or 5");
    requireBothReadersAgree(text, reading);
    if (status != eFileIOSuccess) return;
    const CTrvAssemblyData& data = reading.data;
    requireBothWritersAgree(data);

    require(data == CTrvAssemblyData(data), "a copy is equal");
    require(data.getComponentFileList().size() < input.size(),
            "there are fewer components than bytes");
    const Contents contents = contentsOf(data);
    QByteArray written;
    const bool isWritten = writeText(data, written);
    require(!(isWritten && contents.hasEmptyComponent), "an empty component is not written");
    require(isWritten || contents.hasEmptyComponent || contents.hasNoncharacter,
            "every other assembly is written");
    if (!isWritten) return;
    const Reading readAgain = readByDom(written);
    requireBothReadersAgree(written, readAgain);
    require(readAgain.status == eFileIOSuccess, "a written file can be read");
    const CTrvAssemblyData& again = readAgain.data;
    require(contents.hasZeroInText || again == data, "a written file reads back the same");
    QByteArray writtenAgain;
    require(writeText(again, writtenAgain) && writtenAgain == written,
            "an assembly that was read is written the same");
}

}  // namespace trv::fuzz
