#include <tests/assembly/dom_writer.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/assembly/assembly_names.h>
#include <trvfiles/assembly/component_body.h>
#include <trvfiles/assembly/dom_tree.h>
#include <trvfiles/text/text_conversion.h>

#include <QDomElement>
#include <QString>
#include <QStringView>

#include <cstddef>
#include <vector>

namespace trv::testing {
namespace {

constexpr int formatVersion = 1;

// A component on level n, the root's being 1, opens 2n elements, and its "Data" and "File" two
// more.
constexpr std::size_t maxLevel = (maxNesting - 2) / 2;
constexpr std::size_t maxShallowLevel = (shallowNesting - 2) / 2;

// Qt's parser takes U+FFFE and U+FFFF for the end of its input.
bool canBeReadBack(const QString& text) {
    return !text.contains(QChar(0xFFFE)) && !text.contains(QChar(0xFFFF));
}

bool setText(QDomElement& element, const QString& attribute, const std::string& value) {
    const QString text = fromNarrow(value);
    if (!canBeReadBack(text)) return false;
    element.setAttribute(attribute, text);
    return true;
}

class Writer {
public:
    explicit Writer(DomTree& tree) : tree_(tree), document_(tree.document) {}

    bool write(const CTrvAssemblyData& data) {
        document_.appendChild(document_.createProcessingInstruction(
            QStringLiteral("xml"), QStringLiteral("version=\"1.0\" encoding=\"UTF-8\"  ")));
        QDomElement root = append(document_, QString::fromLatin1(names::root));
        root.setAttribute(QString::fromLatin1(names::version), formatVersion);
        writeAttributes(root, data);
        return writeTree(root, ComponentBody::of(data.getRootComponent()));
    }

private:
    struct Pending {
        QDomElement parent;
        const std::vector<ComponentBody>* components;
        std::size_t next;
    };

    QDomElement append(QDomNode& parent, const QString& tag) {
        QDomElement element = document_.createElement(tag);
        parent.appendChild(element);
        return element;
    }

    void appendVector(QDomElement& parent, const QString& tag, const double vector[3]) {
        QDomElement element = append(parent, tag);
        element.setAttribute(QString::fromLatin1(names::x), vector[0]);
        element.setAttribute(QString::fromLatin1(names::y), vector[1]);
        element.setAttribute(QString::fromLatin1(names::z), vector[2]);
    }

    void writeAttributes(QDomElement& root, const CTrvAssemblyData& data) {
        double dimension[3];
        data.getDimension(dimension);
        QDomElement attributes = append(root, QString::fromLatin1(names::attributes));
        appendVector(attributes, QString::fromLatin1(names::dimension), dimension);
    }

    // Iterative, with a list of the open levels: the tree may be deeper than the stack allows.
    bool writeTree(QDomElement& root, const ComponentBody& component) {
        if (!writeComponent(root, component)) return false;
        while (!pending_.empty()) {
            Pending& level = pending_.back();
            if (level.next == level.components->size()) {
                pending_.pop_back();
                continue;
            }
            QDomElement parent = level.parent;
            if (!writeComponent(parent, (*level.components)[level.next++])) return false;
        }
        return true;
    }

    bool writeComponent(QDomElement& parent, const ComponentBody& component) {
        if (pending_.size() >= maxLevel) return false;
        if (pending_.size() >= maxShallowLevel) tree_.isDeep = true;
        QDomElement element = append(parent, QString::fromLatin1(names::component));
        if (!setText(element, QString::fromLatin1(names::name), component.name) ||
            !setText(element, QString::fromLatin1(names::comment), component.comment)) {
            return false;
        }
        element.setAttribute(QString::fromLatin1(names::enabled), component.enabled ? 1 : 0);
        appendVector(element, QString::fromLatin1(names::translation), component.translation);
        QDomElement orientation = append(element, QString::fromLatin1(names::orientation));
        appendVector(orientation, QString::fromLatin1(names::vec1), component.vec1);
        appendVector(orientation, QString::fromLatin1(names::vec2), component.vec2);
        appendVector(orientation, QString::fromLatin1(names::vec3), component.vec3);
        return writeData(element, component);
    }

    bool writeData(QDomElement& element, const ComponentBody& component) {
        const QString fileName = fromNarrow(component.geometryFileName);
        if (fileName.isEmpty() && component.components.empty()) {
            return false;
        }
        if (!canBeReadBack(fileName)) return false;
        QDomElement data = append(element, QString::fromLatin1(names::data));
        if (fileName.isEmpty()) {
            data.setAttribute(QString::fromLatin1(names::number),
                              static_cast<qulonglong>(component.components.size()));
            pending_.push_back({data, &component.components, 0});
        } else {
            // A geometry file hides the children: they are not written.
            data.setAttribute(QString::fromLatin1(names::number), 1);
            append(data, QString::fromLatin1(names::file))
                .setAttribute(QString::fromLatin1(names::name), fileName);
        }
        return true;
    }

    DomTree& tree_;
    QDomDocument& document_;
    std::vector<Pending> pending_;
};

constexpr std::size_t indentation = 3;

void appendUtf8(std::string& text, QStringView characters) {
    const QByteArray utf8 = characters.toUtf8();
    text.append(utf8.constData(), static_cast<std::size_t>(utf8.size()));
}

// Tag and attribute names of the format are ASCII.
void appendName(std::string& text, const QString& name) {
    for (const QChar character : name)
        text += static_cast<char>(character.unicode());
}

// How a character is written in a quoted value; nullptr if it is written as it is.
const char* escape(const QString& value, int index) {
    switch (value.at(index).unicode()) {
        case '<':
            return "&lt;";
        case '&':
            return "&amp;";
        case '"':
            return "&quot;";
        case '\t':
            return "&#x9;";
        case '\n':
            return "&#xa;";
        case '\r':
            return "&#xd;";
        case '>':
            return value.midRef(0, index).endsWith(QLatin1String("]]")) ? "&gt;" : nullptr;
        default:
            return nullptr;
    }
}

void appendValue(std::string& text, const QString& value) {
    constexpr ushort firstBeyondAscii = 0x80;
    int index = 0;
    while (index < value.size()) {
        const ushort character = value.at(index).unicode();
        if (character >= firstBeyondAscii) {
            int end = index + 1;
            while (end < value.size() && value.at(end).unicode() >= firstBeyondAscii)
                ++end;
            appendUtf8(text, QStringView(value).mid(index, end - index));
            index = end;
            continue;
        }
        if (const char* escaped = escape(value, index)) {
            text += escaped;
        } else {
            text += static_cast<char>(character);
        }
        ++index;
    }
}

void appendAttributes(std::string& text, const QDomElement& element) {
    const QString order[] = {
        QString::fromLatin1(names::version), QString::fromLatin1(names::x),
        QString::fromLatin1(names::y),       QString::fromLatin1(names::z),
        QString::fromLatin1(names::name),    QString::fromLatin1(names::comment),
        QString::fromLatin1(names::enabled), QString::fromLatin1(names::number)};
    const QDomNamedNodeMap attributes = element.attributes();
    int left = attributes.size();
    for (const QString& name : order) {
        if (left == 0) return;
        const QDomNode attribute = attributes.namedItem(name);
        if (attribute.isNull()) continue;
        text += ' ';
        appendName(text, name);
        text += "=\"";
        appendValue(text, attribute.nodeValue());
        text += '"';
        --left;
    }
}

void indent(std::string& text, int depth) {
    text.append(static_cast<std::size_t>(depth) * indentation, ' ');
}

void appendStart(std::string& text, const QDomNode& node, int depth) {
    if (node.isProcessingInstruction()) {
        const QDomProcessingInstruction instruction = node.toProcessingInstruction();
        text += "<?";
        appendUtf8(text, instruction.target());
        text += ' ';
        appendUtf8(text, instruction.data());
        text += "?>\n";
        return;
    }
    const QDomElement element = node.toElement();
    indent(text, depth);
    text += '<';
    appendName(text, element.tagName());
    appendAttributes(text, element);
    text += element.hasChildNodes() ? ">\n" : "/>\n";
}

void appendEnd(std::string& text, const QDomNode& node, int depth) {
    indent(text, depth);
    text += "</";
    appendName(text, node.nodeName());
    text += ">\n";
}

std::string documentText(const QDomDocument& document) {
    std::string text;
    walkDocument(
        document, [&](const QDomNode& node, int depth) { appendStart(text, node, depth); },
        [&](const QDomNode& node, int depth) { appendEnd(text, node, depth); });
    return text;
}

}  // namespace

bool writeByDom(const CTrvAssemblyData& data, DomTree& tree, std::string& text) {
    if (!Writer(tree).write(data)) return false;
    text = documentText(tree.document);
    return true;
}

}  // namespace trv::testing
