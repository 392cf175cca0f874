#include <cli/difference_json.h>
#include <cli/difference_walk.h>
#include <trvfiles/text/text_conversion.h>

#include <QJsonArray>
#include <QJsonObject>

namespace trv::cli {
namespace {

using Change = Difference::Change;
using Field = Difference::Field;

QString changeName(const Difference& difference) {
    switch (difference.change) {
        case Change::added:
            return QStringLiteral("added");
        case Change::removed:
            return QStringLiteral("removed");
        case Change::moved:
            return QStringLiteral("moved");
        default:
            return difference.field == Field::name ? QStringLiteral("renamed")
                                                   : QStringLiteral("changed");
    }
}

QString fieldName(Field field) {
    switch (field) {
        case Field::dimension:
            return QStringLiteral("dimension");
        case Field::name:
            return QStringLiteral("name");
        case Field::comment:
            return QStringLiteral("comment");
        case Field::geometryFile:
            return QStringLiteral("geometryFile");
        case Field::enabled:
            return QStringLiteral("enabled");
        case Field::translation:
            return QStringLiteral("translation");
        case Field::orientation:
            return QStringLiteral("orientation");
        case Field::vec3:
            return QStringLiteral("vec3");
        case Field::none:
            break;
    }
    return {};
}

// The value of the field on one side.
QJsonValue fieldJson(Field field, const OutlineNode* node, const double* vector) {
    if (vector != nullptr) return jsonNumbers(vector, 3);
    const ComponentFields& fields = *node->component;
    switch (field) {
        case Field::name:
            return fromNarrow(fields.name);
        case Field::comment:
            return fromNarrow(fields.comment);
        case Field::geometryFile:
            if (fields.geometryFileName.empty()) return {};
            return fromNarrow(fields.geometryFileName);
        case Field::enabled:
            return fields.enabled;
        case Field::orientation:
            return QJsonObject{{QStringLiteral("vec1"), jsonNumbers(fields.vec1, 3)},
                               {QStringLiteral("vec2"), jsonNumbers(fields.vec2, 3)},
                               {QStringLiteral("vec3"), jsonNumbers(fields.vec3, 3)}};
        default:
            return {};
    }
}

QJsonValue indexJson(const OutlineNode* node, std::size_t index) {
    return node == nullptr ? QJsonValue() : QJsonValue(static_cast<qint64>(index));
}

// Path, field and both values.
QJsonObject fieldChangeJson(const Difference& difference) {
    const bool isOfComponent = difference.field != Field::dimension;
    return {
        {QStringLiteral("path"),
         isOfComponent ? QJsonValue(QString::fromStdString(difference.path)) : QJsonValue()},
        {QStringLiteral("field"), fieldName(difference.field)},
        {QStringLiteral("first"),
         fieldJson(difference.field, difference.first, difference.firstVector)},
        {QStringLiteral("second"),
         fieldJson(difference.field, difference.second, difference.secondVector)},
    };
}

// A component that is on one side only, or moved.
QJsonObject siblingChangeJson(const Difference& difference) {
    QJsonObject json{
        {QStringLiteral("path"), QString::fromStdString(difference.path)},
        {QStringLiteral("field"), QJsonValue()},
        {QStringLiteral("first"), indexJson(difference.first, difference.firstIndex)},
        {QStringLiteral("second"), indexJson(difference.second, difference.secondIndex)},
    };
    if (difference.change == Change::moved) return json;
    const OutlineNode* const node =
        difference.change == Change::added ? difference.second : difference.first;
    if (node != nullptr) {
        json.insert(QStringLiteral("below"), static_cast<qint64>(node->size - 1));
    }
    return json;
}

QJsonArray translationJson(const Difference& difference) {
    double translation[3];
    for (int i = 0; i < 3; ++i)
        translation[i] = difference.secondVector[i] - difference.firstVector[i];
    return jsonNumbers(translation, 3);
}

QJsonObject differenceJson(const Difference& difference) {
    QJsonObject json = difference.change == Change::changed ? fieldChangeJson(difference)
                                                            : siblingChangeJson(difference);
    json.insert(QStringLiteral("change"), changeName(difference));
    if (difference.field == Field::translation) {
        json.insert(QStringLiteral("translation"), translationJson(difference));
    }
    if (difference.field == Field::orientation) {
        const std::optional<Rotation>& rotation = difference.rotation;
        json.insert(QStringLiteral("angle"),
                    rotation ? QJsonValue(rotation->degrees) : QJsonValue());
        json.insert(QStringLiteral("axis"),
                    rotation ? QJsonValue(jsonNumbers(rotation->axis, 3)) : QJsonValue());
    }
    return json;
}

struct Found {
    bool differences = false;
    bool notes = false;
};

Found addDifferences(const DifferenceWalk& walk, JsonWriter& writer) {
    Found found;
    writer.beginArray("differences");
    walk.run(PathForm::exact, [&](const Difference& difference) {
        if (difference.change == Change::ignored) {
            found.notes = true;
        } else {
            found.differences = true;
            writer.addElement(differenceJson(difference));
        }
    });
    writer.endArray();
    return found;
}

}  // namespace

bool printDifferencesAsJson(const NamedAssembly& first, const NamedAssembly& second,
                            std::ostream& out) {
    const DifferenceWalk walk(first.data, second.data);
    JsonWriter writer(out);
    writer.add("files", QJsonArray{first.name, second.name});
    const Found found = addDifferences(walk, writer);
    // A second walk takes less memory than the notes of the first one may.
    writer.beginArray("notes");
    if (found.notes) {
        walk.run(PathForm::exact, [&](const Difference& difference) {
            if (difference.change == Change::ignored)
                writer.addElement(fieldChangeJson(difference));
        });
    }
    writer.endArray();
    writer.add("equal", !found.differences);
    writer.end();
    return found.differences;
}

void addDifferences(const CTrvAssemblyData& first, const CTrvAssemblyData& second,
                    JsonWriter& writer) {
    addDifferences(DifferenceWalk(first, second), writer);
}

}  // namespace trv::cli
