#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/assembly/assembly_names.h>
#include <trvfiles/assembly/assembly_writer.h>
#include <trvfiles/assembly/component_body.h>
#include <trvfiles/support/file_fault.h>
#include <trvfiles/text/text_conversion.h>

#include <QDomElement>
#include <QString>
#include <QStringView>

#include <cstddef>
#include <string>
#include <vector>

namespace trv {
namespace {

constexpr int formatVersion = 1;

// A component on level n, the root being on level 1, has 2n open elements, and its "Data" and
// "File" are two more.
constexpr std::size_t maxLevel = (maxNesting - 2) / 2;
constexpr std::size_t maxShallowLevel = (shallowNesting - 2) / 2;

constexpr char noncharacter[] = " has a text with U+FFFE or U+FFFF, which XML does not allow";

// Qt's parser uses U+FFFE and U+FFFF as marks for the end of its input.
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
    Writer(DomTree& tree, CFileFault* fault)
        : tree_(tree), document_(tree.document), fault_(fault) {}

    bool write(const CTrvAssemblyData& data) {
        // The two blanks at the end are part of the format.
        document_.appendChild(document_.createProcessingInstruction(
            QStringLiteral("xml"), QStringLiteral("version=\"1.0\" encoding=\"UTF-8\"  ")));
        QDomElement root = append(document_, names::root());
        root.setAttribute(names::version(), formatVersion);
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
        element.setAttribute(names::x(), vector[0]);
        element.setAttribute(names::y(), vector[1]);
        element.setAttribute(names::z(), vector[2]);
    }

    void writeAttributes(QDomElement& root, const CTrvAssemblyData& data) {
        double dimension[3];
        data.getDimension(dimension);
        QDomElement attributes = append(root, names::attributes());
        appendVector(attributes, names::dimension(), dimension);
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
        if (pending_.size() >= maxLevel) return refuse(component, " is nested too deeply");
        if (pending_.size() >= maxShallowLevel) tree_.isDeep = true;
        QDomElement element = append(parent, names::component());
        if (!setText(element, names::name(), component.name) ||
            !setText(element, names::comment(), component.comment)) {
            return refuse(component, noncharacter);
        }
        element.setAttribute(names::enabled(), component.enabled ? 1 : 0);
        appendVector(element, names::translation(), component.translation);
        QDomElement orientation = append(element, names::orientation());
        appendVector(orientation, names::vec1(), component.vec1);
        appendVector(orientation, names::vec2(), component.vec2);
        appendVector(orientation, names::vec3(), component.vec3);
        return writeData(element, component);
    }

    bool writeData(QDomElement& element, const ComponentBody& component) {
        const QString fileName = fromNarrow(component.geometryFileName);
        if (fileName.isEmpty() && component.components.empty()) {
            return refuse(component, " has neither a geometry file nor components");
        }
        if (!canBeReadBack(fileName)) return refuse(component, noncharacter);
        QDomElement data = append(element, names::data());
        if (fileName.isEmpty()) {
            data.setAttribute(names::number(),
                              static_cast<qulonglong>(component.components.size()));
            pending_.push_back({data, &component.components, 0});
        } else {
            // The format has either a file or children; the children are not written.
            data.setAttribute(names::number(), 1);
            append(data, names::file()).setAttribute(names::name(), fileName);
        }
        return true;
    }

    bool refuse(const ComponentBody& component, const char* reason) {
        if (fault_ == nullptr) return false;
        const std::string name = fromNarrow(component.name).toStdString();
        set_fault(fault_, "component " + quoted_beginning(name) + reason);
        return false;
    }

    DomTree& tree_;
    QDomDocument& document_;
    CFileFault* const fault_;
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
        // XML requires it only in "]]>", and Qt escapes it only there.
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

// Qt stores attributes in a hash whose order differs from process to process. This order is the
// same for every element, and no element has all of them.
void appendAttributes(std::string& text, const QDomElement& element) {
    const QString order[] = {names::version(), names::x(),       names::y(),       names::z(),
                             names::name(),    names::comment(), names::enabled(), names::number()};
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

}  // namespace

bool writeDocument(const CTrvAssemblyData& data, DomTree& tree, CFileFault* fault) {
    return Writer(tree, fault).write(data);
}

std::string documentText(const QDomDocument& document) {
    std::string text;
    walkDocument(
        document, [&](const QDomNode& node, int depth) { appendStart(text, node, depth); },
        [&](const QDomNode& node, int depth) { appendEnd(text, node, depth); });
    return text;
}

}  // namespace trv
