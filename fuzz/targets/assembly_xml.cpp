// An assembly document of any bytes. It is screened in pieces, read, written and read again.

#include <fuzz/harness/require.h>
#include <fuzz/targets.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/assembly/assembly_reader.h>
#include <trvfiles/assembly/assembly_writer.h>
#include <trvfiles/assembly/document_parser.h>
#include <trvfiles/assembly/dom_tree.h>
#include <trvfiles/assembly/xml_characters.h>
#include <trvfiles/assembly/xml_screen.h>
#include <trvfiles/support/CFileFault.h>

#include <QBuffer>
#include <QByteArray>
#include <QDomImplementation>

#include <string>
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

EFileIOStatus readText(const QByteArray& text, CTrvAssemblyData& data) {
    QBuffer device;
    device.setData(text);
    device.open(QIODevice::ReadOnly);
    DomTree tree;
    CFileFault fault;
    if (!parseDocument(device, tree, &fault)) {
        require(!fault.reason.empty() && fault.line > 0, "a fault has its place");
        return eFileIOContentError;
    }
    requireXmlCharactersOutsideTags(tree.document);
    int version = 0;
    const EFileIOStatus status = readDocument(tree.document, version, data, &fault);
    require(fault.reason.empty() == (status == eFileIOSuccess), "every failure has a reason");
    return status;
}

bool writeText(const CTrvAssemblyData& data, QByteArray& text) {
    DomTree tree;
    if (!writeDocument(data, tree)) return false;
    text = QByteArray::fromStdString(documentText(tree.document));
    return true;
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

    CTrvAssemblyData data;
    const EFileIOStatus status = readText(text, data);
    require(status == eFileIOSuccess || status == eFileIOContentError ||
                status == eFileIOStructureError,
            "the status is 1, 4 or 5");
    if (status != eFileIOSuccess) return;

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
    CTrvAssemblyData again;
    require(readText(written, again) == eFileIOSuccess, "a written file can be read");
    require(contents.hasZeroInText || again == data, "a written file reads back the same");
    QByteArray writtenAgain;
    require(writeText(again, writtenAgain) && writtenAgain == written,
            "an assembly that was read is written the same");
}

}  // namespace trv::fuzz
