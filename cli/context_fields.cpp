#include <cli/context_fields.h>
#include <cli/context_values.h>
#include <cli/text_output.h>
#include <trvfiles/text/text_conversion.h>

#include <algorithm>
#include <cmath>

namespace trv::cli {
namespace {

bool areFinite(const double* numbers, int count) {
    return std::all_of(numbers, numbers + count,
                       [](double number) { return std::isfinite(number); });
}

QString setText(const ContextField& field, const QString& text, CMachineContextData& data) {
    const QString reason = whyTextChanges(text);
    if (!reason.isEmpty()) {
        return QStringLiteral("%1 cannot hold '%2': %3").arg(nameOf(field), text, reason);
    }
    (data.*field.setText)(toNarrow(text));
    return {};
}

QString setProximity(const ContextField& field, const QString& text, CMachineContextData& data) {
    double number = 0;
    if (!readNumbers(text, &number, 1) || !areFinite(&number, 1)) {
        return QStringLiteral("%1 takes a number, such as 2.5, not '%2'").arg(nameOf(field), text);
    }
    if (!comesBack(number)) {
        return QStringLiteral("%1 cannot hold '%2': the number is too large for a file")
            .arg(nameOf(field), text);
    }
    (data.*field.setProximity)(number);
    return {};
}

QString setOrigin(const ContextField& field, const QString& text, CMachineContextData& data) {
    double origin[3] = {};
    if (!readNumbers(text, origin, 3) || !areFinite(origin, 3)) {
        return QStringLiteral("%1 takes three numbers, such as '12.5 0 -3', not '%2'")
            .arg(nameOf(field), text);
    }
    data.setOriginProgram(origin[0], origin[1], origin[2]);
    return {};
}

QJsonValue jsonValue(const ContextField& field, const CMachineContextData& data) {
    if (field.isText()) return storedValue(field, data);
    if (field.isProximity()) return jsonNumber((data.*field.proximity)());
    double origin[3] = {};
    data.getOriginProgram(origin[0], origin[1], origin[2]);
    return jsonNumbers(origin, 3);
}

}  // namespace

QString nameOf(const ContextField& field) {
    return QString::fromStdString(field.name());
}

const ContextField* findContextField(const QString& name) {
    const auto& fields = contextFields();
    const auto found = std::find_if(fields.begin(), fields.end(), [&](const ContextField& field) {
        return nameOf(field) == name;
    });
    return found == fields.end() ? nullptr : &*found;
}

QString storedValue(const ContextField& field, const CMachineContextData& data) {
    return fromNarrow(storedText(field, data));
}

QString setContextField(const ContextField& field, const QString& text, CMachineContextData& data) {
    if (field.isText()) return setText(field, text, data);
    if (field.isProximity()) return setProximity(field, text, data);
    return setOrigin(field, text, data);
}

QJsonObject contextJson(const QString& name, const ContextFieldList& fields,
                        const CMachineContextData& data) {
    QJsonObject values;
    for (const ContextField* field : fields)
        values.insert(nameOf(*field), jsonValue(*field, data));
    return {{QStringLiteral("file"), name}, {QStringLiteral("fields"), values}};
}

}  // namespace trv::cli
