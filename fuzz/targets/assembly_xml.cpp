// An assembly document of any bytes. It is screened in pieces, and read by both readers.

#include <fuzz/harness/assembly_record.h>
#include <fuzz/harness/require.h>
#include <fuzz/targets.h>
#include <trvfiles/assembly/assembly_reader.h>
#include <trvfiles/assembly/dom_tree.h>
#include <trvfiles/assembly/xml_characters.h>
#include <trvfiles/assembly/xml_screen.h>

#include <QBuffer>
#include <QByteArray>
#include <QDomImplementation>
#include <QString>

#include <algorithm>
#include <string_view>

namespace trv::fuzz {
namespace {

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

// A device that returns few bytes at each read.
class SlowDevice : public QBuffer {
public:
    SlowDevice(const QByteArray& bytes, qint64 step) : step_(step) {
        setData(bytes);
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }

protected:
    qint64 readData(char* data, qint64 size) override {
        return QBuffer::readData(data, std::min(size, step_));
    }

private:
    qint64 step_;
};

// What the scanner accepts, the DOM reads alike. Of the rest the scanner leaves the record alone.
//
// @param step  how many bytes the scanner gets at once
// @return whether the scanner accepts the document
bool requireTheSameOfTheScanner(const QByteArray& text, Accepted accepted, const Reading& dom,
                                qint64 step) {
    SlowDevice device(text, step);
    CTrvAssemblyData data;
    int version = 0;
    if (!readPlainDocument(device, accepted, version, data)) {
        require(bytesOf(data) == bytesOf(CTrvAssemblyData()), "the record is unchanged");
        return false;
    }
    require(dom.status == eFileIOSuccess, "both readers accept the document");
    require(version == dom.version, "both readers find the same version");
    require(bytesOf(data) == bytesOf(dom.data), "both readers build the same record");
    require(accepted == Accepted::complete || dom.fault.notes.empty(),
            "a document about which there is a note is not unaltered");
    return true;
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
    const bool isPlain =
        requireTheSameOfTheScanner(text, Accepted::complete, reading, text.size() + 1);
    // In pieces of few bytes: each part of a document then continues after one.
    const qint64 step = 1 + text.size() % 31;
    const bool isUnaltered = requireTheSameOfTheScanner(text, Accepted::unaltered, reading, step);
    require(isPlain || !isUnaltered, "what is unaltered is also complete");
    if (status != eFileIOSuccess) return;
    require(reading.data.getComponentFileList().size() < input.size(),
            "there are fewer components than bytes");
}

}  // namespace trv::fuzz
