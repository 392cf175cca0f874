#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/assembly/assembly_names.h>
#include <trvfiles/assembly/assembly_reader.h>
#include <trvfiles/facade/text_conversion.h>

#include <QDomElement>
#include <QString>

#include <utility>
#include <vector>

namespace trv {
namespace {

// Reads "x", "y" and "z" and stops at the first that is no number; it and those after it are 0.
bool readVector(const QDomElement& element, double vector[3]) {
    const QString coordinates[] = {names::x(), names::y(), names::z()};
    vector[0] = vector[1] = vector[2] = 0;
    for (int i = 0; i < 3; ++i) {
        bool isNumber = false;
        const double value =
            element.attribute(coordinates[i], QStringLiteral("0.0")).toDouble(&isNumber);
        // A number out of range gives a value all the same, which is not taken.
        if (!isNumber) return false;
        vector[i] = value;
    }
    return true;
}

bool readOrientation(const QDomElement& orientation, CTrvAssemblyComponentData& component) {
    const QDomElement elements[] = {orientation.firstChildElement(names::vec1()),
                                    orientation.firstChildElement(names::vec2()),
                                    orientation.firstChildElement(names::vec3())};
    double vectors[3][3];
    for (int i = 0; i < 3; ++i) {
        if (elements[i].isNull()) return false;
        readVector(elements[i], vectors[i]);
    }
    component.setOrientation(vectors[0], vectors[1], vectors[2]);
    return true;
}

// Fills everything but the children. An "Orientation" that is not complete is the one failure.
//
// @param firstChild  the first child component; null where there is none
bool readComponent(const QDomElement& element, CTrvAssemblyComponentData& component,
                   QDomElement& firstChild) {
    component.setName(toNarrow(element.attribute(names::name())));
    component.setComment(toNarrow(element.attribute(names::comment())));
    component.setEnabled(element.attribute(names::enabled(), QStringLiteral("1")) ==
                         QLatin1String("1"));

    const QDomElement translation = element.firstChildElement(names::translation());
    if (!translation.isNull()) {
        double vector[3];
        readVector(translation, vector);
        component.setTranslation(vector);
    }
    const QDomElement orientation = element.firstChildElement(names::orientation());
    if (!orientation.isNull() && !readOrientation(orientation, component)) return false;

    const QDomElement data = element.firstChildElement(names::data());
    const QDomElement file = data.firstChildElement(names::file());
    if (file.isNull()) {
        firstChild = data.firstChildElement(names::component());
    } else {
        component.setGeometryFileName(toNarrow(file.attribute(names::name())));
    }
    return true;
}

// Reads a component and all that is below it; children that fail are left out.
bool readTree(const QDomElement& element, CTrvAssemblyComponentData& root, ReadReport& report) {
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
            if (!readComponent(child, below.component, below.nextChild)) {
                if (report.leftOut++ == 0) report.firstLeftOutLine = child.lineNumber();
                continue;
            }
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

EFileIOStatus fail(EFileIOStatus status, const QString& reason, const QDomElement& place,
                   ReadReport& report) {
    report.fault = {reason, place.lineNumber(), place.columnNumber()};
    return status;
}

QString missing(const QString& child, const QDomElement& parent) {
    return QStringLiteral("<%1> has no <%2>").arg(parent.tagName(), child);
}

}  // namespace

EFileIOStatus readDocument(const QDomDocument& document, int& version, CTrvAssemblyData& data,
                           ReadReport& report) {
    const QDomElement root = document.documentElement();
    if (root.tagName() != names::root()) {
        return fail(
            eFileIOStructureError,
            QStringLiteral("the root element is <%1>, not <%2>").arg(root.tagName(), names::root()),
            root, report);
    }
    bool isInteger = false;
    version = root.attribute(names::version()).toInt(&isInteger);
    if (!isInteger) {
        return fail(eFileIOContentError,
                    QStringLiteral("the version of <%1> is no integer").arg(names::root()), root,
                    report);
    }
    const QDomElement attributes = root.firstChildElement(names::attributes());
    if (attributes.isNull()) {
        return fail(eFileIOContentError, missing(names::attributes(), root), root, report);
    }
    const QDomElement dimension = attributes.firstChildElement(names::dimension());
    double size[3];
    if (!dimension.isNull() && readVector(dimension, size)) data.setDimension(size);

    const QDomElement element = root.firstChildElement(names::component());
    if (element.isNull()) {
        return fail(eFileIOContentError, missing(names::component(), root), root, report);
    }
    CTrvAssemblyComponentData component;
    if (!readTree(element, component, report)) {
        return fail(eFileIOStructureError,
                    QStringLiteral("the root component's <Orientation> is not complete"), element,
                    report);
    }
    data.getRootComponent() = std::move(component);
    return eFileIOSuccess;
}

}  // namespace trv
