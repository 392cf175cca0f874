#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/assembly/assembly_names.h>
#include <trvfiles/assembly/assembly_writer.h>
#include <trvfiles/assembly/block_writer.h>
#include <trvfiles/assembly/component_body.h>
#include <trvfiles/assembly/dom_tree.h>
#include <trvfiles/assembly/number_writing.h>
#include <trvfiles/assembly/xml_characters.h>
#include <trvfiles/support/file_fault.h>
#include <trvfiles/support/platform.h>
#include <trvfiles/text/text_conversion.h>

#include <QString>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace trv {
namespace {

constexpr std::size_t formatVersion = 1;
constexpr std::size_t indentation = 3;

// A component on level n, the root's being 1, opens 2n elements, and its "Data" and "File" two
// more.
constexpr std::size_t maxLevel = (maxNesting - 2) / 2;

constexpr char noncharacter[] = " has a text with U+FFFE or U+FFFF, which XML does not allow";

// Narrow text that is UTF-8 without characters that XML does not allow, up to its first zero.
bool isPlainText(const std::string& text) {
    const bool isUtf8 = platform::narrow_text_is_utf8();
    const char* at = text.c_str();
    while (*at != '\0') {
        const bool isAscii = static_cast<unsigned char>(*at) < 0x80;
        const int length = isAscii ? 1 : isUtf8 ? utf8CharacterLength(at) : 0;
        if (length == 0) return false;
        at += length;
    }
    return true;
}

bool canBeReadBack(const std::string& narrow) {
    if (isPlainText(narrow)) return true;
    const QString text = fromNarrow(narrow);
    return !text.contains(QChar(0xFFFE)) && !text.contains(QChar(0xFFFF));
}

bool isEmptyText(const std::string& narrow) {
    return narrow.empty() || narrow.front() == '\0';
}

bool refuse(const ComponentBody& component, const char* reason, CFileFault* fault) {
    if (fault == nullptr) return false;
    const std::string name = fromNarrow(component.name).toStdString();
    set_fault(fault, CFileFault::Cause::notWritable, "component " + quoted_beginning(name) + reason,
              0, 0, name);
    return false;
}

bool isWritable(const ComponentBody& component, std::size_t level, CFileFault* fault) {
    if (level > maxLevel) return refuse(component, " is nested too deeply", fault);
    if (!canBeReadBack(component.name) || !canBeReadBack(component.comment)) {
        return refuse(component, noncharacter, fault);
    }
    if (isEmptyText(component.geometryFileName) && component.components.empty()) {
        return refuse(component, " has neither a geometry file nor components", fault);
    }
    return canBeReadBack(component.geometryFileName) || refuse(component, noncharacter, fault);
}

// Calls `enter(component, level)` for a component and each one below it that has a place in a file,
// in document order, and `leave(component, level)` after those below a component. Iterative, with a
// list of the open levels: the tree may be deeper than the stack allows.
template <class Enter, class Leave>
bool walk(const ComponentBody& root, Enter enter, Leave leave) {
    struct Open {
        const ComponentBody* component;
        std::size_t next;
    };
    std::vector<Open> open;
    const ComponentBody* component = &root;
    for (;;) {
        if (component != nullptr) {
            if (!enter(*component, open.size() + 1)) return false;
            open.push_back({component, 0});
        }
        Open& last = open.back();
        // A geometry file hides the children: they are not written.
        const bool hasChildren = isEmptyText(last.component->geometryFileName);
        if (hasChildren && last.next < last.component->components.size()) {
            component = &last.component->components[last.next++];
            continue;
        }
        component = nullptr;
        if (!leave(*last.component, open.size())) return false;
        open.pop_back();
        if (open.empty()) return true;
    }
}

// How a character is written in a quoted value; nullptr if it is written as it is. XML requires an
// escaped ">" only in "]]>", and Qt escapes it only there.
const char* escapeOf(char character, bool followsBrackets) {
    switch (character) {
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
            return followsBrackets ? "&gt;" : nullptr;
        default:
            return nullptr;
    }
}

class Writer {
public:
    explicit Writer(BlockWriter& out) : out_(out) {}

    bool write(const CTrvAssemblyData& data) {
        // The two blanks at the end are part of the format.
        out_.append("<?xml version=\"1.0\" encoding=\"UTF-8\"  ?>\n");
        open(0, names::root);
        appendCount(names::version, formatVersion);
        out_.append(">\n");
        writeAttributes(data);
        walk(
            ComponentBody::of(data.getRootComponent()),
            [this](const ComponentBody& component, std::size_t level) {
                startComponent(component, 2 * level - 1);
                return !out_.hasFailed();
            },
            [this](const ComponentBody&, std::size_t level) {
                endComponent(2 * level - 1);
                return !out_.hasFailed();
            });
        close(0, names::root);
        return out_.finish();
    }

private:
    void writeAttributes(const CTrvAssemblyData& data) {
        double dimension[3];
        data.getDimension(dimension);
        openParent(1, names::attributes);
        appendVector(2, names::dimension, dimension);
        close(1, names::attributes);
    }

    void startComponent(const ComponentBody& component, std::size_t depth) {
        open(depth, names::component);
        appendText(names::name, component.name);
        appendText(names::comment, component.comment);
        appendCount(names::enabled, component.enabled ? 1 : 0);
        out_.append(">\n");
        appendVector(depth + 1, names::translation, component.translation);
        openParent(depth + 1, names::orientation);
        appendVector(depth + 2, names::vec1, component.vec1);
        appendVector(depth + 2, names::vec2, component.vec2);
        appendVector(depth + 2, names::vec3, component.vec3);
        close(depth + 1, names::orientation);

        const bool hasFile = !isEmptyText(component.geometryFileName);
        open(depth + 1, names::data);
        appendCount(names::number, hasFile ? 1 : component.components.size());
        out_.append(">\n");
        if (!hasFile) return;
        open(depth + 2, names::file);
        appendText(names::name, component.geometryFileName);
        out_.append("/>\n");
    }

    void endComponent(std::size_t depth) {
        close(depth + 1, names::data);
        close(depth, names::component);
    }

    template <std::size_t size>
    void open(std::size_t depth, const char (&tag)[size]) {
        out_.indent(depth * indentation);
        out_.append("<");
        out_.append(tag);
    }

    template <std::size_t size>
    void openParent(std::size_t depth, const char (&tag)[size]) {
        open(depth, tag);
        out_.append(">\n");
    }

    template <std::size_t size>
    void close(std::size_t depth, const char (&tag)[size]) {
        out_.indent(depth * indentation);
        out_.append("</");
        out_.append(tag);
        out_.append(">\n");
    }

    template <std::size_t size>
    void appendVector(std::size_t depth, const char (&tag)[size], const double vector[3]) {
        open(depth, tag);
        appendNumber(names::x, vector[0]);
        appendNumber(names::y, vector[1]);
        appendNumber(names::z, vector[2]);
        out_.append("/>\n");
    }

    template <std::size_t size>
    void beginAttribute(const char (&name)[size]) {
        out_.append(" ");
        out_.append(name);
        out_.append("=\"");
    }

    template <std::size_t size>
    void appendNumber(const char (&name)[size], double value) {
        beginAttribute(name);
        out_.advance(writeNumber(out_.room(maxNumberLength), value));
        out_.append("\"");
    }

    template <std::size_t size>
    void appendCount(const char (&name)[size], std::size_t count) {
        beginAttribute(name);
        out_.append(std::to_string(count));
        out_.append("\"");
    }

    template <std::size_t size>
    void appendText(const char (&name)[size], const std::string& narrow) {
        beginAttribute(name);
        if (isPlainText(narrow)) {
            appendEscaped(narrow.c_str());
        } else {
            appendEscaped(fromNarrow(narrow).toUtf8().constData());
        }
        out_.append("\"");
    }

    void appendEscaped(const char* utf8) {
        const char* run = utf8;
        const char* at = utf8;
        for (; *at != '\0'; ++at) {
            const char* const escaped =
                escapeOf(*at, at - utf8 >= 2 && at[-1] == ']' && at[-2] == ']');
            if (escaped == nullptr) continue;
            appendBetween(run, at);
            out_.append(std::string_view(escaped));
            run = at + 1;
        }
        appendBetween(run, at);
    }

    void appendBetween(const char* begin, const char* end) {
        out_.append(std::string_view(begin, static_cast<std::size_t>(end - begin)));
    }

    BlockWriter& out_;
};

}  // namespace

bool isWritable(const CTrvAssemblyData& data, CFileFault* fault) {
    return walk(
        ComponentBody::of(data.getRootComponent()),
        [fault](const ComponentBody& component, std::size_t level) {
            return isWritable(component, level, fault);
        },
        [](const ComponentBody&, std::size_t) { return true; });
}

bool writeAssembly(const CTrvAssemblyData& data, BlockWriter& out) {
    return Writer(out).write(data);
}

}  // namespace trv
