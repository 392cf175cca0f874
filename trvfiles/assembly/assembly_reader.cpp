#include <trvfiles/assembly/assembly_builder.h>
#include <trvfiles/assembly/assembly_reader.h>
#include <trvfiles/assembly/document_parser.h>
#include <trvfiles/assembly/dom_tree.h>
#include <trvfiles/assembly/plain_scanner.h>
#include <trvfiles/support/file_fault.h>
#include <trvfiles/text/text_conversion.h>

#include <QByteArray>
#include <QDomElement>
#include <QIODevice>
#include <QString>

#include <algorithm>
#include <cerrno>
#include <string>
#include <utility>
#include <vector>

namespace trv {
namespace {

QString latin1(std::string_view name) {
    return QString::fromLatin1(name.data(), static_cast<int>(name.size()));
}

std::string_view viewOf(const QByteArray& bytes) {
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

class DomElementStart final : public ElementStart {
public:
    /// @param tag  the name of the element in UTF-8; has to outlive the object, as the element has
    DomElementStart(const QDomElement& element, const QByteArray& tag)
        : ElementStart(viewOf(tag), {element.lineNumber(), element.columnNumber()}),
          element_(element) {}

    bool find(std::string_view attribute, std::string_view& value) const override {
        const QString name = latin1(attribute);
        if (!element_.hasAttribute(name)) return false;
        value_ = element_.attribute(name).toUtf8();
        value = viewOf(value_);
        return true;
    }
    std::string narrow(std::string_view attribute) const override {
        return toNarrow(element_.attribute(latin1(attribute)));
    }
    // Qt has the attributes in the order of a hash whose seed differs in each process.
    std::vector<std::string> attributesExcept(const KnownNames& names) const override {
        const QDomNamedNodeMap attributes = element_.attributes();
        std::vector<std::string> others;
        for (int i = 0; i < attributes.length(); ++i) {
            std::string name = attributes.item(i).nodeName().toStdString();
            if (!isKnown(names, name)) others.push_back(std::move(name));
        }
        std::sort(others.begin(), others.end());
        return others;
    }

private:
    const QDomElement& element_;
    mutable QByteArray value_;
};

class PlainElementStart final : public ElementStart {
public:
    explicit PlainElementStart(const PlainScanner& scanner)
        : ElementStart(scanner.name()), scanner_(scanner), next_(scanner.begin()) {}

    // Most elements have their attributes in the order in which they are asked for.
    bool find(std::string_view attribute, std::string_view& value) const override {
        const auto isMeant = [&](const PlainScanner::Attribute& candidate) {
            return PlainScanner::areSame(candidate.name, attribute);
        };
        const PlainScanner::Attribute* found = next_;
        if (found == scanner_.end() || !isMeant(*found)) {
            found = std::find_if(scanner_.begin(), scanner_.end(), isMeant);
        }
        if (found == scanner_.end()) return false;
        next_ = found + 1;
        value = found->value;
        return true;
    }
    std::string narrow(std::string_view attribute) const override {
        std::string_view value;
        return find(attribute, value) ? narrowFromUtf8(value) : std::string();
    }
    std::vector<std::string> attributesExcept(const KnownNames& names) const override {
        std::vector<std::string> others;
        for (const PlainScanner::Attribute& attribute : scanner_) {
            if (!isKnown(names, attribute.name)) others.emplace_back(attribute.name);
        }
        std::sort(others.begin(), others.end());
        return others;
    }

private:
    const PlainScanner& scanner_;
    // After the attribute that was found last.
    mutable const PlainScanner::Attribute* next_;
};

// The parser has dropped texts of blanks only. A reference to an unknown entity is a node without
// text.
void noteText(const QDomNode& node, AssemblyBuilder& builder) {
    const QString text = node.isText() ? node.nodeValue().trimmed()
                                       : QLatin1Char('&') + node.nodeName() + QLatin1Char(';');
    if (text.isEmpty()) return;
    builder.ignoreText({node.lineNumber(), node.columnNumber()},
                       node.parentNode().nodeName().toStdString(), text.toStdString());
}

}  // namespace

EFileIOStatus readDocument(const QDomDocument& document, int& version, CTrvAssemblyData& data,
                           CFileFault* fault) {
    const bool isAsked = fault != nullptr;
    AssemblyBuilder builder(isAsked ? AssemblyNotes::Mode::collected
                                    : AssemblyNotes::Mode::omitted);
    const auto enter = [&](const QDomNode& node, int) {
        if (isAsked && (node.isText() || node.isEntityReference())) noteText(node, builder);
        if (!node.isElement()) return;
        const QDomElement element = node.toElement();
        const QByteArray tag = element.tagName().toUtf8();
        builder.start(DomElementStart(element, tag));
        if (!node.hasChildNodes()) builder.end();
    };
    walkDocument(document, enter, [&](const QDomNode& node, int) {
        if (node.isElement()) builder.end();
    });
    return builder.finish(version, data, fault);
}

bool readPlainDocument(QIODevice& device, Accepted accepted, int& version, CTrvAssemblyData& data) {
    // A component with a placement and a file has more bytes.
    constexpr std::int64_t minComponentSize = 128;
    PlainScanner scanner(device, static_cast<std::size_t>(maxNesting));
    const auto maxComponents = static_cast<std::size_t>(scanner.size() / minComponentSize);
    const bool isUnaltered = accepted == Accepted::unaltered;
    AssemblyBuilder builder(
        isUnaltered ? AssemblyNotes::Mode::detected : AssemblyNotes::Mode::omitted, maxComponents);
    for (;;) {
        switch (scanner.next()) {
            case PlainScanner::Event::elementStart:
                builder.start(PlainElementStart(scanner));
                break;
            case PlainScanner::Event::elementEnd:
                builder.end();
                break;
            case PlainScanner::Event::documentEnd: {
                const bool isAccepted = isUnaltered ? !builder.hasAltered() : !builder.hasLeftOut();
                if (!isAccepted || builder.status() != eFileIOSuccess) return false;
                return builder.finish(version, data, nullptr) == eFileIOSuccess;
            }
            case PlainScanner::Event::unusual:
                return false;
        }
    }
}

EFileIOStatus readAnyDocument(QIODevice& device, int& version, CTrvAssemblyData& data,
                              CFileFault* fault) {
    // A file that cannot be read twice goes to the DOM at once.
    if (!device.isSequential()) {
        const Accepted accepted = fault == nullptr ? Accepted::complete : Accepted::unaltered;
        if (readPlainDocument(device, accepted, version, data)) return eFileIOSuccess;
        if (!device.seek(0)) {
            set_system_fault(fault, errno);
            return eFileIOContentError;
        }
    }
    DomTree tree;
    if (!parseDocument(device, tree, fault)) return eFileIOContentError;
    return readDocument(tree.document, version, data, fault);
}

}  // namespace trv
