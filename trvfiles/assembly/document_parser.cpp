#include <trvfiles/assembly/document_parser.h>
#include <trvfiles/assembly/xml_screen.h>
#include <trvfiles/support/platform.h>

#include <QByteArray>
#include <QXmlInputSource>

#include <cstddef>
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

class ScreenedSource : public QXmlInputSource {
public:
    ScreenedSource(QIODevice& device, int deepest) : device_(device), screen_(deepest) {}

    XmlScreen::Refusal refusal() const { return screen_.refusal(); }

    void fetchData() override {
        QString passed;
        // An empty piece would be taken for the end of the document.
        while (passed.isEmpty() && !atEnd_ && refusal() == XmlScreen::Refusal::none) {
            const QByteArray block = device_.read(blockSize);
            atEnd_ = block.isEmpty();
            passed = atEnd_ ? screen_.rest() : screen_.pass(fromRawData(block));
        }
        setData(passed);
    }

private:
    QIODevice& device_;
    XmlScreen screen_;
    bool atEnd_ = false;
};

struct Outcome {
    bool wellFormed = false;
    XmlScreen::Refusal refusal = XmlScreen::Refusal::none;
};

Outcome parse(QIODevice& device, int deepest, QDomDocument& document, ParseFault& fault) {
    ScreenedSource source(device, deepest);
    const bool wellFormed =
        document.setContent(&source, false, &fault.reason, &fault.line, &fault.column);
    return {wellFormed, source.refusal()};
}

}  // namespace

bool parseDocument(QIODevice& device, DomTree& tree, ParseFault& fault) {
    Outcome outcome;
    // A device that cannot go back has one try, on the stack that is deep enough for everything.
    tree.isDeep = device.isSequential();
    if (!tree.isDeep) {
        outcome = parse(device, shallowNesting, tree.document, fault);
        tree.isDeep = outcome.refusal == XmlScreen::Refusal::tooDeep;
        if (tree.isDeep && !device.seek(0)) return false;
    }
    if (tree.isDeep) {
        try {
            platform::call_on_stack(stackForDeepest, [&] {
                outcome = parse(device, deepestNesting, tree.document, fault);
            });
        } catch (const std::system_error&) {
            fault.reason = QStringLiteral("no stack can be had for a document this deep");
            return false;
        }
    }
    // What is cut off at a refusal may look complete.
    if (outcome.refusal == XmlScreen::Refusal::tooDeep) {
        fault.reason = QStringLiteral("more than %1 elements are open").arg(deepestNesting);
        return false;
    }
    if (outcome.refusal == XmlScreen::Refusal::entityDeclaration) {
        fault.reason = QStringLiteral("an entity is declared");
        return false;
    }
    return outcome.wellFormed;
}

}  // namespace trv

QT_WARNING_POP
