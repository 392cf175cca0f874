#include <cli/assembly_loss.h>
#include <trvfiles/assembly/assembly_names.h>

#include <QXmlStreamReader>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>
#include <vector>

namespace trv::cli {
namespace {

enum class Context { document, root, attributes, component, orientation, data, empty };

// An element that the format has in another one.
struct Rule {
    Context parent;
    const char* tag;
    Context context;
    bool isSingle;
    // Separated by blanks.
    const char* attributes;
};

constexpr Rule rules[] = {
    {Context::document, names::root, Context::root, true, "version"},
    {Context::root, names::attributes, Context::attributes, true, ""},
    {Context::root, names::component, Context::component, true, "name comment enabled"},
    {Context::attributes, names::dimension, Context::empty, true, "x y z"},
    {Context::component, names::translation, Context::empty, true, "x y z"},
    {Context::component, names::orientation, Context::orientation, true, ""},
    {Context::component, names::data, Context::data, true, "number"},
    {Context::orientation, names::vec1, Context::empty, true, "x y z"},
    {Context::orientation, names::vec2, Context::empty, true, "x y z"},
    {Context::orientation, names::vec3, Context::empty, true, "x y z"},
    {Context::data, names::component, Context::component, false, "name comment enabled"},
    {Context::data, names::file, Context::empty, true, "name"},
};
constexpr std::size_t ruleCount = std::size(rules);

// Allocates nothing: this is asked of each attribute of a document.
bool isListed(const QStringRef& attribute, std::string_view attributes) {
    while (!attributes.empty()) {
        const std::string_view name = attributes.substr(0, attributes.find(' '));
        if (attribute == QLatin1String(name.data(), static_cast<int>(name.size()))) return true;
        attributes.remove_prefix(std::min(name.size() + 1, attributes.size()));
    }
    return false;
}

// Walks over the document. Iterative: a document may be deeper than the stack.
class Search {
public:
    explicit Search(QIODevice& device) : reader_(&device) {
        // Names are compared with their prefixes, as reading does.
        reader_.setNamespaceProcessing(false);
        open_.push_back({Context::document, 0});
    }

    AssemblyLoss run() {
        QString what;
        while (what.isEmpty() && !reader_.atEnd())
            what = next();
        if (what.isEmpty() && reader_.hasError()) {
            what = QStringLiteral("content that cannot be checked (%1)").arg(reader_.errorString());
        }
        if (what.isEmpty()) return {};
        return {static_cast<int>(reader_.lineNumber()), what};
    }

private:
    struct Open {
        Context context;
        // Which of the rules have been used in it, a bit for each.
        unsigned used;
    };

    // What is lost at the next place of the document; empty if nothing is.
    QString next() {
        switch (reader_.readNext()) {
            case QXmlStreamReader::StartElement:
                return startElement();
            case QXmlStreamReader::EndElement:
                open_.pop_back();
                return {};
            case QXmlStreamReader::Comment:
                return QStringLiteral("a comment");
            case QXmlStreamReader::ProcessingInstruction:
                return QStringLiteral("a processing instruction");
            case QXmlStreamReader::DTD:
                return QStringLiteral("the document type");
            case QXmlStreamReader::Characters:
                return reader_.text().trimmed().isEmpty() ? QString() : QStringLiteral("text");
            case QXmlStreamReader::EntityReference:
                return QStringLiteral("an entity");
            default:
                return {};
        }
    }

    QString startElement() {
        const QStringRef tag = reader_.qualifiedName();
        Open& parent = open_.back();
        for (std::size_t i = 0; i < ruleCount; ++i) {
            const Rule& rule = rules[i];
            if (rule.parent != parent.context || tag != QLatin1String(rule.tag)) continue;
            const bool isRepeated = rule.isSingle && (parent.used & (1U << i)) != 0;
            parent.used |= 1U << i;
            if (isRepeated) return QStringLiteral("another <%1>").arg(tag.toString());
            if (hasFileAndComponents(parent)) {
                return QStringLiteral("a <%1> beside a <%2>")
                    .arg(QLatin1String(names::component), QLatin1String(names::file));
            }
            open_.push_back({rule.context, 0});
            return lostAttribute(rule, tag);
        }
        return QStringLiteral("the element <%1>").arg(tag.toString());
    }

    static bool hasFileAndComponents(const Open& element) {
        unsigned children = 0;
        for (std::size_t i = 0; i < ruleCount; ++i) {
            if (rules[i].parent == Context::data) children |= 1U << i;
        }
        return element.context == Context::data && (element.used & children) == children;
    }

    QString lostAttribute(const Rule& rule, const QStringRef& tag) const {
        const QXmlStreamAttributes attributes = reader_.attributes();
        for (const QXmlStreamAttribute& attribute : attributes) {
            const QStringRef name = attribute.qualifiedName();
            if (!isListed(name, rule.attributes)) {
                return QStringLiteral("the attribute %1 of <%2>")
                    .arg(name.toString(), tag.toString());
            }
            const bool isVersion = name == QLatin1String(names::version);
            if (isVersion && attribute.value() != QLatin1String("1")) {
                return QStringLiteral("the version %1").arg(attribute.value().toString());
            }
        }
        return {};
    }

    QXmlStreamReader reader_;
    std::vector<Open> open_;
};

}  // namespace

AssemblyLoss findAssemblyLoss(QIODevice& device) {
    return Search(device).run();
}

}  // namespace trv::cli
