#include <trvfiles/assembly/document_parser.h>
#include <trvfiles/assembly/plain_decoder.h>
#include <trvfiles/assembly/replaced_bytes.h>
#include <trvfiles/assembly/tag_notes.h>
#include <trvfiles/assembly/xml_screen.h>
#include <trvfiles/support/file_fault.h>
#include <trvfiles/support/platform.h>

#include <QByteArray>
#include <QFileDevice>
#include <QTextCodec>
#include <QXmlInputSource>

#include <cerrno>
#include <cstddef>
#include <new>
#include <string>
#include <system_error>
#include <utility>

// Qt 5.15 marks its SAX classes as deprecated, but QDomDocument still parses with them. An input
// source is the only place at which a document can be checked as the parser sees it, whatever its
// encoding.
QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED

namespace trv {
namespace {

// The parser takes some 350 bytes for each of the 2,000 elements that may be open.
constexpr std::size_t stackForMaxNesting = std::size_t{4} << 20;

// The whole file would be in memory twice, as bytes and as characters.
constexpr int blockSize = 65536;

// Qt destroys its codecs during exit, and its input source uses the one for UTF-8 without a check.
bool hasTextCodecs() {
    constexpr int mibOfUtf8 = 106;
    return QTextCodec::codecForMib(mibOfUtf8) != nullptr;
}

class ScreenedSource : public QXmlInputSource {
public:
    // @param replaced  looks at each block; may be nullptr
    ScreenedSource(QIODevice& device, int maxDepth, ReplacedBytes* replaced,
                   XmlScreen::TagVisitor visitTag)
        : device_(device), replaced_(replaced), screen_(maxDepth, std::move(visitTag)) {}

    const XmlScreen& screen() const { return screen_; }
    bool isUnknownEncoding() const { return decoder_.isUnknownEncoding(); }
    // The `errno` of a read that has failed; 0 if none has.
    int readError() const { return readError_; }

    void fetchData() override {
        QString passed;
        // The parser takes an empty piece for the end of the document.
        while (passed.isEmpty() && !atEnd_ && screen_.refusal() == XmlScreen::Refusal::none) {
            const QByteArray block = nextBlock();
            atEnd_ = block.isEmpty() || isUnknownEncoding();
            passed = atEnd_ ? screen_.rest() : screen_.pass(decoded(block));
        }
        setData(passed);
    }

private:
    QByteArray nextBlock() {
        errno = 0;
        QByteArray block = device_.read(blockSize);
        const int error = errno;
        const auto* const file = qobject_cast<const QFileDevice*>(&device_);
        const bool hasFailed = file != nullptr && file->error() != QFileDevice::NoError;
        if (hasFailed) readError_ = error;
        return block;
    }

    QString decoded(const QByteArray& block) {
        QString text = hasTextCodecs_ ? fromRawData(block) : decoder_.decode(block);
        if (replaced_ != nullptr) replaced_->look(block, text);
        return text;
    }

    QIODevice& device_;
    ReplacedBytes* const replaced_;
    XmlScreen screen_;
    const bool hasTextCodecs_ = hasTextCodecs();
    PlainDecoder decoder_;
    int readError_ = 0;
    bool atEnd_ = false;
};

// "U+0001"
QString refusedCharacter(const XmlScreen& screen) {
    constexpr int hexadecimal = 16;
    constexpr int digits = 4;
    const QString number =
        QStringLiteral("%1").arg(screen.refusedCharacter(), digits, hexadecimal, QLatin1Char('0'));
    return QStringLiteral("U+") + number.toUpper();
}

QString reasonOf(const XmlScreen& screen) {
    switch (screen.refusal()) {
        case XmlScreen::Refusal::tooDeep:
            return QStringLiteral("more than %1 elements are open").arg(maxNesting);
        case XmlScreen::Refusal::entityDeclaration:
            return QStringLiteral("an entity is declared");
        case XmlScreen::Refusal::character:
            return QStringLiteral("XML does not allow the character ") + refusedCharacter(screen);
        case XmlScreen::Refusal::none:
            break;
    }
    return {};
}

CFileFault::Cause causeOf(XmlScreen::Refusal refusal) {
    using Cause = CFileFault::Cause;
    if (refusal == XmlScreen::Refusal::tooDeep) return Cause::tooDeep;
    return refusal == XmlScreen::Refusal::character ? Cause::invalidCharacter
                                                    : Cause::entityDeclared;
}

struct Outcome {
    bool isAccepted = false;
    bool isTooDeep = false;
};

void setReason(CFileFault& fault, const ScreenedSource& source, const QString& reason, int line,
               int column) {
    const XmlScreen& screen = source.screen();
    if (screen.refusal() != XmlScreen::Refusal::none) {
        const XmlScreen::Position place = screen.refusedAt();
        const bool isCharacter = screen.refusal() == XmlScreen::Refusal::character;
        set_fault(&fault, causeOf(screen.refusal()), reasonOf(screen).toStdString(),
                  static_cast<int>(place.line), static_cast<int>(place.column),
                  isCharacter ? refusedCharacter(screen).toStdString() : std::string());
    } else if (source.isUnknownEncoding()) {
        set_fault(&fault, CFileFault::Cause::unknownEncoding,
                  "during exit the encoding of the document is unknown", 1, 1);
    } else if (source.readError() != 0) {
        set_system_fault(&fault, source.readError());
    } else {
        set_fault(&fault, CFileFault::Cause::notWellFormed, reason.toStdString(), line, column);
    }
}

void addNote(CFileFault& fault, const ReplacedBytes& replaced) {
    if (!replaced.isFound()) return;
    CFileFault::Note note;
    note.kind = CFileFault::Note::Kind::notText;
    note.line = replaced.line();
    note.column = replaced.column();
    note.count = replaced.count();
    note.text = "bytes that are not text are read as U+FFFD";
    if (note.count > 1) note.text += ", " + std::to_string(note.count) + " times";
    fault.notes.push_back(std::move(note));
}

Outcome parse(QIODevice& device, int maxDepth, QDomDocument& document, CFileFault* fault) {
    clear_fault(fault);
    ReplacedBytes replaced;
    XmlScreen::TagVisitor visitTag;
    if (fault != nullptr) {
        visitTag = [fault](const QString& tag, XmlScreen::Position end) {
            addTagNotes(tag, {static_cast<int>(end.line), static_cast<int>(end.column)},
                        fault->notes);
        };
    }
    ScreenedSource source(device, maxDepth, fault == nullptr ? nullptr : &replaced, visitTag);
    QString reason;
    int line = 0;
    int column = 0;
    const bool isWellFormed = document.setContent(&source, false, &reason, &line, &column);
    // What is cut off at a refusal may look complete.
    const XmlScreen::Refusal refusal = source.screen().refusal();
    const bool isAccepted = isWellFormed && refusal == XmlScreen::Refusal::none;
    if (fault != nullptr) {
        if (!isAccepted) setReason(*fault, source, reason, line, column);
        addNote(*fault, replaced);
    }
    return {isAccepted, refusal == XmlScreen::Refusal::tooDeep};
}

}  // namespace

bool parseDocument(QIODevice& device, DomTree& tree, CFileFault* fault) {
    // A second stack takes time, and few documents are deep: so the first attempt is on the
    // caller's stack. A device that cannot go back has one attempt only.
    tree.isDeep = device.isSequential();
    if (!tree.isDeep) {
        const Outcome outcome = parse(device, shallowNesting, tree.document, fault);
        if (!outcome.isTooDeep) return outcome.isAccepted;
        tree.isDeep = true;
        if (!device.seek(0)) {
            // The first attempt has stored that the document is too deep for it.
            set_system_fault(fault, errno);
            return false;
        }
    }
    Outcome outcome;
    try {
        platform::call_on_stack(stackForMaxNesting,
                                [&] { outcome = parse(device, maxNesting, tree.document, fault); });
    } catch (const std::system_error&) {
        throw std::bad_alloc();
    }
    return outcome.isAccepted;
}

}  // namespace trv

QT_WARNING_POP
