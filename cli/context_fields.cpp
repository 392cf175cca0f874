#include <cli/context_fields.h>
#include <cli/context_values.h>
#include <trvfiles/text/text_conversion.h>

#include <algorithm>
#include <cmath>

namespace trv::cli {
namespace {

using Data = CMachineContextData;

ContextField textField(const char* section, const char* key, std::wstring (Data::*get)() const,
                       void (Data::*set)(const std::wstring&)) {
    return {section, key, get, set, nullptr, nullptr};
}

ContextField proximityField(const char* section, double (Data::*get)() const,
                            void (Data::*set)(double)) {
    return {section, "proximity", nullptr, nullptr, get, set};
}

bool areFinite(const double* numbers, int count) {
    return std::all_of(numbers, numbers + count,
                       [](double number) { return std::isfinite(number); });
}

QString setText(const ContextField& field, const QString& text, Data& data) {
    const QString reason = whyTextChanges(text);
    if (!reason.isEmpty()) {
        return QStringLiteral("%1 cannot hold '%2': %3.").arg(field.name(), text, reason);
    }
    (data.*field.setText)(toWide(text));
    return {};
}

QString setProximity(const ContextField& field, const QString& text, Data& data) {
    double number = 0;
    if (!readNumbers(text, &number, 1) || !areFinite(&number, 1)) {
        return QStringLiteral("%1 takes a number, such as 2.5, not '%2'.").arg(field.name(), text);
    }
    if (!comesBack(number)) {
        return QStringLiteral("%1 cannot hold '%2': a file keeps no number as large.")
            .arg(field.name(), text);
    }
    (data.*field.setProximity)(number);
    return {};
}

QString setOrigin(const ContextField& field, const QString& text, Data& data) {
    double origin[3] = {};
    if (!readNumbers(text, origin, 3) || !areFinite(origin, 3)) {
        return QStringLiteral("%1 takes three numbers, such as '12.5 0 -3', not '%2'.")
            .arg(field.name(), text);
    }
    data.setOriginProgram(origin[0], origin[1], origin[2]);
    return {};
}

}  // namespace

QString ContextField::name() const {
    return QString::fromLatin1(section) + QLatin1Char('.') + QString::fromLatin1(key);
}

const std::vector<ContextField>& contextFields() {
    static const std::vector<ContextField> fields = {
        textField("header", "comment", &Data::getCommentW, &Data::setCommentW),
        textField("header", "name", &Data::getNameW, &Data::setNameW),
        textField("machine", "name", &Data::getMachineNameW, &Data::setMachineNameW),
        textField("machine", "position", &Data::getMachinePositionW, &Data::setMachinePositionW),
        proximityField("machine", &Data::getMachineProximity, &Data::setMachineProximity),
        {"postpro", "origin_program", nullptr, nullptr, nullptr, nullptr},
        textField("postpro", "reference_axis", &Data::getReferenceAxisForOriginProgramW,
                  &Data::setReferenceAxisForOriginProgramW),
        textField("part", "surface_group", &Data::getSurfaceGroupW, &Data::setSurfaceGroupW),
        textField("clamping_system", "name", &Data::getClampingSystemW, &Data::setClampingSystemW),
        proximityField("clamping_system", &Data::getClampingProximity, &Data::setClampingProximity),
    };
    return fields;
}

const ContextField* findContextField(const QString& name) {
    const std::vector<ContextField>& fields = contextFields();
    const auto found = std::find_if(fields.begin(), fields.end(), [&](const ContextField& field) {
        return field.name() == name;
    });
    return found == fields.end() ? nullptr : &*found;
}

QString storedText(const ContextField& field, const CMachineContextData& data) {
    if (field.isText()) return fromWide((data.*field.text)());
    if (field.isProximity()) {
        return QString::fromStdString(proximityText((data.*field.proximity)()));
    }
    double origin[3] = {};
    data.getOriginProgram(origin[0], origin[1], origin[2]);
    return QString::fromStdString(originText(origin));
}

QString setContextField(const ContextField& field, const QString& text, CMachineContextData& data) {
    if (field.isText()) return setText(field, text, data);
    if (field.isProximity()) return setProximity(field, text, data);
    return setOrigin(field, text, data);
}

}  // namespace trv::cli
