#include <trvfiles/assembly/document_parser.h>
#include <trvfiles/assembly/plain_decoder.h>
#include <trvfiles/assembly/xml_screen.h>
#include <trvfiles/support/platform.h>

#include <QByteArray>
#include <QTextCodec>
#include <QXmlInputSource>

#include <cstddef>
#include <new>
#include <system_error>

// Qt 5.15 marks its SAX classes as deprecated, but QDomDocument still parses with them; an input
// source is the one place where a document can be looked through as the parser will see it,
// whatever its encoding.
QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED

namespace trv {
namespace {

// Enough for the parser and deepestNesting elements, several times over.
constexpr std::size_t stackForDeepest = std::size_t{4} << 20;

constexpr int blockSize = 65536;

// Qt destroys its codecs during exit, and its input source takes the one for UTF-8 for granted.
bool hasTextCodecs() {
    constexpr int mibOfUtf8 = 106;
    return QTextCodec::codecForMib(mibOfUtf8) != nullptr;
}

class ScreenedSource : public QXmlInputSource {
public:
    ScreenedSource(QIODevice& device, int deepest) : device_(device), screen_(deepest) {}

    const XmlScreen& screen() const { return screen_; }
    bool isUnknownEncoding() const { return decoder_.isUnknownEncoding(); }

    void fetchData() override {
        QString passed;
        // An empty piece would be taken for the end of the document.
        while (passed.isEmpty() && !atEnd_ && screen_.refusal() == XmlScreen::Refusal::none) {
            const QByteArray block = device_.read(blockSize);
            atEnd_ = block.isEmpty() || isUnknownEncoding();
            passed = atEnd_ ? screen_.rest() : screen_.pass(decoded(block));
        }
        setData(passed);
    }

private:
    QString decoded(const QByteArray& block) {
        return hasTextCodecs_ ? fromRawData(block) : decoder_.decode(block);
    }

    QIODevice& device_;
    XmlScreen screen_;
    const bool hasTextCodecs_ = hasTextCodecs();
    PlainDecoder decoder_;
    bool atEnd_ = false;
};

QString reasonOf(const XmlScreen& screen) {
    constexpr int hexadecimal = 16;
    constexpr int digits = 4;
    switch (screen.refusal()) {
        case XmlScreen::Refusal::tooDeep:
            return QStringLiteral("more than %1 elements are open").arg(deepestNesting);
        case XmlScreen::Refusal::entityDeclaration:
            return QStringLiteral("an entity is declared");
        case XmlScreen::Refusal::character:
            return QStringLiteral("XML does not allow the character U+") +
                   QStringLiteral("%1")
                       .arg(screen.refusedCharacter(), digits, hexadecimal, QLatin1Char('0'))
                       .toUpper();
        case XmlScreen::Refusal::none:
            break;
    }
    return {};
}

struct Outcome {
    bool isAccepted = false;
    bool isTooDeep = false;
};

Outcome parse(QIODevice& device, int deepest, QDomDocument& document, ParseFault& fault) {
    ScreenedSource source(device, deepest);
    const bool isWellFormed =
        document.setContent(&source, false, &fault.reason, &fault.line, &fault.column);
    const XmlScreen& screen = source.screen();
    // What is cut off at a refusal may look complete.
    if (screen.refusal() == XmlScreen::Refusal::none) {
        if (source.isUnknownEncoding()) {
            fault = {QStringLiteral("during exit the encoding of the document is unknown"), 1, 1};
        }
        return {isWellFormed, false};
    }
    const XmlScreen::Position position = screen.refusedAt();
    fault = {reasonOf(screen), static_cast<int>(position.line), static_cast<int>(position.column)};
    return {false, screen.refusal() == XmlScreen::Refusal::tooDeep};
}

}  // namespace

bool parseDocument(QIODevice& device, DomTree& tree, ParseFault& fault) {
    // A device that cannot go back has one try, on the stack that is deep enough for everything.
    tree.isDeep = device.isSequential();
    if (!tree.isDeep) {
        const Outcome outcome = parse(device, shallowNesting, tree.document, fault);
        if (!outcome.isTooDeep) return outcome.isAccepted;
        tree.isDeep = true;
        if (!device.seek(0)) return false;
    }
    Outcome outcome;
    try {
        platform::call_on_stack(stackForDeepest, [&] {
            outcome = parse(device, deepestNesting, tree.document, fault);
        });
    } catch (const std::system_error&) {
        throw std::bad_alloc();
    }
    return outcome.isAccepted;
}

}  // namespace trv

QT_WARNING_POP
