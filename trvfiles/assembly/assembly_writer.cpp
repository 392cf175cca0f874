#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/assembly/assembly_names.h>
#include <trvfiles/assembly/assembly_writer.h>
#include <trvfiles/assembly/component_body.h>
#include <trvfiles/support/file_fault.h>
#include <trvfiles/text/text_conversion.h>

#include <QDomElement>
#include <QString>

#include <cstddef>
#include <string>
#include <vector>

namespace trv {
namespace {

constexpr int formatVersion = 1;

// A component on level n, the root's being 1, opens 2n elements, and its "Data" and "File" two
// more.
constexpr std::size_t maxLevel = (maxNesting - 2) / 2;
constexpr std::size_t maxShallowLevel = (shallowNesting - 2) / 2;

constexpr char noncharacter[] = " has a text with U+FFFE or U+FFFF, which XML does not allow";

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
    Writer(DomTree& tree, CFileFault* fault)
        : tree_(tree), document_(tree.document), fault_(fault) {}

    bool write(const CTrvAssemblyData& data) {
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
            // A geometry file hides the children: they are not written.
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

}  // namespace

bool writeDocument(const CTrvAssemblyData& data, DomTree& tree, CFileFault* fault) {
    return Writer(tree, fault).write(data);
}

}  // namespace trv
