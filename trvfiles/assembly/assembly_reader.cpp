#include <trvfiles/assembly/assembly_builder.h>
#include <trvfiles/assembly/assembly_reader.h>
#include <trvfiles/assembly/dom_tree.h>
#include <trvfiles/assembly/plain_scanner.h>
#include <trvfiles/text/text_conversion.h>

#include <QByteArray>
#include <QDomElement>
#include <QIODevice>
#include <QString>

#include <algorithm>

namespace trv {
namespace {

QString latin1(std::string_view name) {
    return QString::fromLatin1(name.data(), static_cast<int>(name.size()));
}

class DomElementStart final : public ElementStart {
public:
    explicit DomElementStart(const QDomElement& element)
        : element_(element), tag_(element.tagName().toUtf8()) {}

    std::string_view tag() const override { return viewOf(tag_); }
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
    int line() const override { return element_.lineNumber(); }
    int column() const override { return element_.columnNumber(); }

private:
    static std::string_view viewOf(const QByteArray& bytes) {
        return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
    }

    const QDomElement& element_;
    const QByteArray tag_;
    mutable QByteArray value_;
};

class PlainElementStart final : public ElementStart {
public:
    explicit PlainElementStart(const PlainScanner& scanner) : scanner_(scanner) {}

    std::string_view tag() const override { return scanner_.name(); }
    bool find(std::string_view attribute, std::string_view& value) const override {
        const auto isMeant = [&](const PlainScanner::Attribute& candidate) {
            return candidate.name == attribute;
        };
        const auto* const found = std::find_if(scanner_.begin(), scanner_.end(), isMeant);
        if (found == scanner_.end()) return false;
        value = found->value;
        return true;
    }
    std::string narrow(std::string_view attribute) const override {
        std::string_view value;
        return find(attribute, value) ? narrowFromUtf8(value) : std::string();
    }
    int line() const override { return 0; }
    int column() const override { return 0; }

private:
    const PlainScanner& scanner_;
};

}  // namespace

EFileIOStatus readDocument(const QDomDocument& document, int& version, CTrvAssemblyData& data,
                           CFileFault* fault) {
    const bool isAsked = fault != nullptr;
    AssemblyBuilder builder(isAsked ? AssemblyBuilder::Notes::collected
                                    : AssemblyBuilder::Notes::omitted);
    const auto enter = [&](const QDomNode& node, int) {
        if (!node.isElement()) return;
        const QDomElement element = node.toElement();
        builder.start(DomElementStart(element));
        if (!node.hasChildNodes()) builder.end();
    };
    walkDocument(document, enter, [&](const QDomNode& node, int) {
        if (node.isElement()) builder.end();
    });
    return builder.finish(version, data, fault);
}

bool readPlainDocument(QIODevice& device, Accepted accepted, int& version, CTrvAssemblyData& data) {
    // A component with a placement and a file has more bytes.
    constexpr qint64 minComponentSize = 128;
    const auto maxComponents = static_cast<std::size_t>(device.size() / minComponentSize);
    AssemblyBuilder builder(AssemblyBuilder::Notes::omitted, maxComponents);
    PlainScanner scanner(device, static_cast<std::size_t>(maxNesting));
    const PlainElementStart element(scanner);
    for (;;) {
        switch (scanner.next()) {
            case PlainScanner::Event::elementStart:
                builder.start(element);
                break;
            case PlainScanner::Event::elementEnd:
                builder.end();
                break;
            case PlainScanner::Event::documentEnd: {
                const bool isAccepted =
                    accepted == Accepted::unaltered ? !builder.hasAltered() : !builder.hasLeftOut();
                if (!isAccepted || builder.status() != eFileIOSuccess) return false;
                return builder.finish(version, data, nullptr) == eFileIOSuccess;
            }
            case PlainScanner::Event::unusual:
                return false;
        }
    }
}

}  // namespace trv
