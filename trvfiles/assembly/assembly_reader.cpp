#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/assembly/assembly_names.h>
#include <trvfiles/assembly/assembly_reader.h>
#include <trvfiles/support/file_fault.h>
#include <trvfiles/text/text_conversion.h>

#include <QDomElement>
#include <QString>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace trv {
namespace {

using Kind = CFileFault::Note::Kind;

std::string quotedText(const QString& text) {
    return quoted_beginning(text.toStdString());
}

QString missing(const QString& child, const QDomElement& parent) {
    return QStringLiteral("<%1> has no <%2>").arg(parent.tagName(), child);
}

// Reads the elements of one document. The notes are composed only if the caller wants them.
class Reader {
public:
    explicit Reader(CFileFault* fault) : fault_(fault) {}

    EFileIOStatus read(const QDomElement& root, int& version, CTrvAssemblyData& data);

private:
    EFileIOStatus fail(EFileIOStatus status, const QString& reason, const QDomElement& place);
    void addNote(Kind kind, const QDomElement& place, std::string subject, const std::string& text);

    bool readVector(const QDomElement& element, double vector[3], const char* consequence);
    bool readOrientation(const QDomElement& orientation, CTrvAssemblyComponentData& component);
    bool readEnabled(const QDomElement& element);
    bool readComponent(const QDomElement& element, CTrvAssemblyComponentData& component,
                       QDomElement& firstChild);
    bool readChild(const QDomElement& element, CTrvAssemblyComponentData& component,
                   QDomElement& firstChild);
    bool readTree(const QDomElement& element, CTrvAssemblyComponentData& root);

    CFileFault* const fault_;
};

EFileIOStatus Reader::fail(EFileIOStatus status, const QString& reason, const QDomElement& place) {
    set_fault(fault_, reason.toStdString(), place.lineNumber(), place.columnNumber());
    return status;
}

void Reader::addNote(Kind kind, const QDomElement& place, std::string subject,
                     const std::string& text) {
    fault_->notes.push_back(
        {kind, place.lineNumber(), place.columnNumber(), std::move(subject), text});
}

// Stops at the first coordinate that is not a number; it and those after it are 0. A number out of
// range has a value, too, but is refused like a word.
//
// @param consequence  for a note: what becomes of the numbers then
bool Reader::readVector(const QDomElement& element, double vector[3], const char* consequence) {
    const QString coordinates[] = {names::x(), names::y(), names::z()};
    vector[0] = vector[1] = vector[2] = 0;
    for (int i = 0; i < 3; ++i) {
        bool isNumber = false;
        const QString text = element.attribute(coordinates[i], QStringLiteral("0.0"));
        const double value = text.toDouble(&isNumber);
        if (isNumber) {
            vector[i] = value;
            continue;
        }
        if (fault_ != nullptr) {
            const std::string tag = element.tagName().toStdString();
            addNote(Kind::notANumber, element, tag,
                    coordinates[i].toStdString() + " of <" + tag +
                        "> is not a number: " + quotedText(text) + "; " + consequence);
        }
        return false;
    }
    return true;
}

bool Reader::readOrientation(const QDomElement& orientation, CTrvAssemblyComponentData& component) {
    const QDomElement elements[] = {orientation.firstChildElement(names::vec1()),
                                    orientation.firstChildElement(names::vec2()),
                                    orientation.firstChildElement(names::vec3())};
    double vectors[3][3];
    for (int i = 0; i < 3; ++i) {
        if (elements[i].isNull()) return false;
        readVector(elements[i], vectors[i], "it and those after it are 0");
    }
    component.setOrientation(vectors[0], vectors[1], vectors[2]);
    return true;
}

// Only "1" is enabled. The attribute may be missing, which is the same as "1".
bool Reader::readEnabled(const QDomElement& element) {
    const QString text = element.attribute(names::enabled(), QStringLiteral("1"));
    const bool isEnabled = text == QLatin1String("1");
    if (fault_ != nullptr && !isEnabled && text != QLatin1String("0")) {
        const QString name = element.attribute(names::name());
        addNote(Kind::notAFlag, element, name.toStdString(),
                "component " + quotedText(name) + " is disabled: enabled is " + quotedText(text));
    }
    return isEnabled;
}

// Fills everything but the children. An "Orientation" that is not complete is the only failure.
//
// @param firstChild  the first child component; null if there is none
bool Reader::readComponent(const QDomElement& element, CTrvAssemblyComponentData& component,
                           QDomElement& firstChild) {
    component.setName(toNarrow(element.attribute(names::name())));
    component.setComment(toNarrow(element.attribute(names::comment())));
    component.setEnabled(readEnabled(element));

    const QDomElement translation = element.firstChildElement(names::translation());
    if (!translation.isNull()) {
        double vector[3];
        readVector(translation, vector, "it and those after it are 0");
        component.setTranslation(vector);
    }
    const QDomElement orientation = element.firstChildElement(names::orientation());
    if (!orientation.isNull() && !readOrientation(orientation, component)) return false;

    const QDomElement data = element.firstChildElement(names::data());
    const QDomElement file = data.firstChildElement(names::file());
    // A "File" hides the children, also if it has no name.
    if (file.isNull()) {
        firstChild = data.firstChildElement(names::component());
    } else {
        component.setGeometryFileName(toNarrow(file.attribute(names::name())));
    }
    return true;
}

// @return false if the component is left out; that is then the one note about it
bool Reader::readChild(const QDomElement& element, CTrvAssemblyComponentData& component,
                       QDomElement& firstChild) {
    const std::size_t noteCount = fault_ == nullptr ? 0 : fault_->notes.size();
    if (readComponent(element, component, firstChild)) return true;
    if (fault_ != nullptr) {
        fault_->notes.resize(noteCount);
        const QString name = element.attribute(names::name());
        addNote(
            Kind::leftOut, element, name.toStdString(),
            "component " + quotedText(name) + " is left out: its <Orientation> is not complete");
    }
    return false;
}

// Reads a component and all that is below it. Iterative, with a list of the open levels: the
// document may be deeper than the caller's stack allows.
bool Reader::readTree(const QDomElement& element, CTrvAssemblyComponentData& root) {
    struct Level {
        CTrvAssemblyComponentData component;
        std::vector<CTrvAssemblyComponentData> children;
        QDomElement nextChild;
    };
    std::vector<Level> levels(1);
    if (!readComponent(element, levels.back().component, levels.back().nextChild)) return false;

    for (;;) {
        Level& level = levels.back();
        if (!level.nextChild.isNull()) {
            const QDomElement child = level.nextChild;
            level.nextChild = child.nextSiblingElement(names::component());
            Level below;
            if (!readChild(child, below.component, below.nextChild)) continue;
            if (below.nextChild.isNull()) {
                level.children.push_back(std::move(below.component));
            } else {
                levels.push_back(std::move(below));
            }
            continue;
        }
        level.component.setComponents(std::move(level.children));
        CTrvAssemblyComponentData complete = std::move(level.component);
        levels.pop_back();
        if (levels.empty()) {
            root = std::move(complete);
            return true;
        }
        levels.back().children.push_back(std::move(complete));
    }
}

EFileIOStatus Reader::read(const QDomElement& root, int& version, CTrvAssemblyData& data) {
    if (root.tagName() != names::root()) {
        return fail(
            eFileIOStructureError,
            QStringLiteral("the root element is <%1>, not <%2>").arg(root.tagName(), names::root()),
            root);
    }
    bool isInteger = false;
    version = root.attribute(names::version()).toInt(&isInteger);
    if (!isInteger) {
        return fail(eFileIOContentError,
                    QStringLiteral("the version of <%1> is no integer").arg(names::root()), root);
    }
    const QDomElement attributes = root.firstChildElement(names::attributes());
    if (attributes.isNull()) {
        return fail(eFileIOContentError, missing(names::attributes(), root), root);
    }
    const QDomElement dimension = attributes.firstChildElement(names::dimension());
    double size[3];
    if (!dimension.isNull() && readVector(dimension, size, "the whole dimension is ignored")) {
        data.setDimension(size);
    }

    const QDomElement element = root.firstChildElement(names::component());
    if (element.isNull()) {
        return fail(eFileIOContentError, missing(names::component(), root), root);
    }
    // Read into a component of its own: after a failure the record keeps its root.
    CTrvAssemblyComponentData component;
    if (!readTree(element, component)) {
        return fail(eFileIOStructureError,
                    QStringLiteral("the root component's <Orientation> is not complete"), element);
    }
    data.getRootComponent() = std::move(component);
    return eFileIOSuccess;
}

}  // namespace

EFileIOStatus readDocument(const QDomDocument& document, int& version, CTrvAssemblyData& data,
                           CFileFault* fault) {
    return Reader(fault).read(document.documentElement(), version, data);
}

}  // namespace trv
