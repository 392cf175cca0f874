#include <trvfiles/machine_context/TrvIniFile.h>
#include <trvfiles/machine_context/context_fields.h>
#include <trvfiles/support/number_text.h>

#include <algorithm>

namespace trv {
namespace {

using Data = CMachineContextData;

// The table below is easier to check with words than with four kinds of true and false.
constexpr bool required = true;
constexpr bool optional = false;
constexpr bool always = true;
constexpr bool unlessEmpty = false;

constexpr ContextField textField(const char* section, const char* key, bool isRequired,
                                 bool isWrittenEmpty, std::string (Data::*get)() const,
                                 void (Data::*set)(const std::string&)) {
    return {section, key, isRequired, isWrittenEmpty, get, set, nullptr, nullptr};
}

constexpr ContextField proximityField(const char* section, double (Data::*get)() const,
                                      void (Data::*set)(double)) {
    return {section, "proximity", optional, always, nullptr, nullptr, get, set};
}

constexpr ContextField originField(const char* section) {
    return {section, "origin_program", required, always, nullptr, nullptr, nullptr, nullptr};
}

// @param rest  what follows the last number
NumberReading readingOf(std::string_view rest) {
    skip_white_space(rest);
    return rest.empty() ? NumberReading::whole : NumberReading::beginning;
}

}  // namespace

std::string ContextField::name() const {
    return std::string(section) + '.' + key;
}

const std::array<ContextField, contextFieldCount>& contextFields() {
    static constexpr std::array<ContextField, contextFieldCount> fields = {{
        textField("header", "comment", optional, always, &Data::getComment, &Data::setComment),
        textField("header", "name", optional, always, &Data::getName, &Data::setName),
        textField("machine", "name", required, always, &Data::getMachineName,
                  &Data::setMachineName),
        textField("machine", "position", required, always, &Data::getMachinePosition,
                  &Data::setMachinePosition),
        proximityField("machine", &Data::getMachineProximity, &Data::setMachineProximity),
        originField("postpro"),
        textField("postpro", "reference_axis", optional, always,
                  &Data::getReferenceAxisForOriginProgram, &Data::setReferenceAxisForOriginProgram),
        textField("part", "surface_group", optional, unlessEmpty, &Data::getSurfaceGroup,
                  &Data::setSurfaceGroup),
        textField("clamping_system", "name", optional, unlessEmpty, &Data::getClampingSystem,
                  &Data::setClampingSystem),
        proximityField("clamping_system", &Data::getClampingProximity, &Data::setClampingProximity),
    }};
    return fields;
}

bool isAlwaysWritten(std::string_view section) {
    const auto& fields = contextFields();
    return std::any_of(fields.begin(), fields.end(), [&](const ContextField& field) {
        return field.section == section && field.isWrittenEmpty;
    });
}

// Existing files have single precision.
std::string proximityText(double value) {
    return TrvIniFile::floatText(static_cast<float>(value));
}

std::string originText(const double origin[3]) {
    std::string text;
    for (int i = 0; i < 3; ++i) {
        if (i > 0) text += ' ';
        append_fixed(text, origin[i]);
    }
    return text;
}

std::string storedText(const ContextField& field, const CMachineContextData& data) {
    if (field.isText()) return (data.*field.text)();
    if (field.isProximity()) return proximityText((data.*field.proximity)());
    double origin[3] = {};
    data.getOriginProgram(origin[0], origin[1], origin[2]);
    return originText(origin);
}

NumberReading setFromFile(const ContextField& field, const std::string& value,
                          CMachineContextData& data) {
    std::string_view rest(value);
    if (field.isText()) {
        (data.*field.setText)(value);
        return NumberReading::whole;
    }
    if (field.isProximity()) {
        double number = 0;
        // Set in every case: without a number the proximity is 0, and not what the record had.
        const bool isNumber = scan_number(rest, number);
        (data.*field.setProximity)(number);
        return isNumber ? readingOf(rest) : NumberReading::none;
    }
    // All or none: a mixture of new and old coordinates would be another point.
    double coordinates[3] = {};
    for (double& coordinate : coordinates) {
        if (!scan_number(rest, coordinate)) return NumberReading::none;
    }
    data.setOriginProgram(coordinates[0], coordinates[1], coordinates[2]);
    return readingOf(rest);
}

}  // namespace trv
