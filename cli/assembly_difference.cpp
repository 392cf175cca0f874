#include <cli/assembly_difference.h>
#include <cli/text_output.h>
#include <trvfiles/assembly/assembly_comparison.h>

#include <QString>
#include <QStringList>

#include <cmath>
#include <cstddef>
#include <string>

namespace trv::cli {
namespace {

using Change = Difference::Change;
using Field = Difference::Field;

QString changeText(const QString& from, const QString& to) {
    return QStringLiteral("%1 -> %2").arg(from, to);
}

QString quotedChange(const std::string& from, const std::string& to) {
    const QString quoted = QStringLiteral("\"%1\"");
    return changeText(quoted.arg(shown(from)), quoted.arg(shown(to)));
}

QString vectorChange(const double from[3], const double to[3]) {
    return changeText(vectorText(from), vectorText(to));
}

QString translationText(const Difference& difference) {
    double translation[3];
    for (std::size_t i = 0; i < 3; ++i) {
        translation[i] = difference.secondVector[i] - difference.firstVector[i];
        if (!std::isfinite(translation[i])) {
            return QStringLiteral("translation ") +
                   vectorChange(difference.firstVector, difference.secondVector);
        }
    }
    return QStringLiteral("moved by ") + roundedVectorText(translation);
}

// Without a rotation, the text for each of the two vectors that differ.
QStringList orientationTexts(const Difference& difference) {
    if (difference.rotation)
        return {QStringLiteral("turned by ") + rotationText(*difference.rotation)};
    const ComponentFields& one = *difference.first->component;
    const ComponentFields& other = *difference.second->component;
    const ComponentDifference vectors = differenceOf(one, other);
    QStringList texts;
    if (vectors.vec1) texts += QStringLiteral("vec1 ") + vectorChange(one.vec1, other.vec1);
    if (vectors.vec2) texts += QStringLiteral("vec2 ") + vectorChange(one.vec2, other.vec2);
    return texts;
}

QStringList fieldTexts(const Difference& difference) {
    if (difference.field == Field::dimension) {
        return {vectorChange(difference.firstVector, difference.secondVector)};
    }
    const ComponentFields& one = *difference.first->component;
    const ComponentFields& other = *difference.second->component;
    const auto enabledText = [](const ComponentFields& fields) {
        return fields.enabled ? QStringLiteral("enabled") : QStringLiteral("disabled");
    };
    switch (difference.field) {
        case Field::name:
            return {QStringLiteral("name ") + quotedChange(one.name, other.name)};
        case Field::comment:
            return {QStringLiteral("comment ") + quotedChange(one.comment, other.comment)};
        case Field::geometryFile:
            return {QStringLiteral("file ") +
                    quotedChange(one.geometryFileName, other.geometryFileName)};
        case Field::enabled:
            return {changeText(enabledText(one), enabledText(other))};
        case Field::translation:
            return {translationText(difference)};
        case Field::orientation:
            return orientationTexts(difference);
        default:
            return {};
    }
}

QString unpairedText(const OutlineNode& node, const QString& side) {
    QString text = QStringLiteral("only in the %1 file").arg(side);
    if (node.size == 1) return text;
    return QStringLiteral("%1, with %2 below")
        .arg(text,
             counted(node.size - 1, QStringLiteral("component"), QStringLiteral("components")));
}

}  // namespace

QStringList textsOf(const Difference& difference) {
    switch (difference.change) {
        case Change::added:
            return {unpairedText(*difference.second, QStringLiteral("second"))};
        case Change::removed:
            return {unpairedText(*difference.first, QStringLiteral("first"))};
        case Change::moved:
            return {QStringLiteral("moved among its siblings to [%1]").arg(difference.secondIndex)};
        case Change::ignored:
            return {QStringLiteral("vec3 %1, which does not count")
                        .arg(vectorChange(difference.firstVector, difference.secondVector))};
        case Change::changed:
            return fieldTexts(difference);
    }
    return {};
}

std::string placeOf(const Difference& difference) {
    return difference.field == Field::dimension ? "dimension" : difference.path;
}

bool printDifferences(const CTrvAssemblyData& first, const CTrvAssemblyData& second,
                      std::ostream& out) {
    bool found = false;
    DifferenceWalk(first, second).run(PathForm::visible, [&](const Difference& difference) {
        const bool isNote = difference.change == Change::ignored;
        found = found || !isNote;
        for (const QString& text : textsOf(difference)) {
            out << (isNote ? "note: " : "") << placeOf(difference) << ": " << qUtf8Printable(text)
                << '\n';
        }
    });
    return found;
}

}  // namespace trv::cli
