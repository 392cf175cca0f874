#include <trvfiles/assembly/assembly_names.h>
#include <trvfiles/assembly/document_text.h>
#include <trvfiles/assembly/dom_walk.h>

#include <QStringView>

#include <cstddef>

namespace trv {
namespace {

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

// How a character reads inside a quoted value; null where it stands for itself.
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

std::string documentText(const QDomDocument& document) {
    std::string text;
    walkDocument(
        document, [&](const QDomNode& node, int depth) { appendStart(text, node, depth); },
        [&](const QDomNode& node, int depth) { appendEnd(text, node, depth); });
    return text;
}

}  // namespace trv
