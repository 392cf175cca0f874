#include <fuzz/harness/context_fields.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace trv::fuzz {
namespace {

using Data = CMachineContextData;

// Removes the text after each "+" that is not one of a pair, up to and including the next ")".
std::string withoutReferences(const std::string& text) {
    std::string kept;
    for (std::size_t i = 0; i < text.size(); ++i) {
        kept += text[i];
        if (text[i] != '+') continue;
        if (text.compare(i, 2, "++") == 0) {
            kept += text[++i];
            continue;
        }
        const std::size_t closer = text.find(')', i);
        if (closer != std::string::npos) i = closer;
    }
    return kept;
}

std::string textReadBack(std::string text) {
    for (char& c : text) {
        if (c == '\r' || c == '\n') c = ' ';
    }
    constexpr const char* blanks = " \t\f\v\n\r";
    text = withoutReferences(text);
    text.erase(0, text.find_first_not_of(blanks));
    text.erase(text.find_last_not_of(blanks) + 1);
    return text;
}

std::string fixed(double value) {
    constexpr std::size_t maxNumberLength = 400;
    if (std::isnan(value)) return "nan";
    std::array<char, maxNumberLength> text;
    std::snprintf(text.data(), text.size(), "%f", value);
    return text.data();
}

double originReadBack(double value) {
    return std::strtod(fixed(value).c_str(), nullptr);
}

double proximityReadBack(double value) {
    constexpr std::size_t keptCharacters = 19;
    const std::string text = fixed(static_cast<float>(value)).substr(0, keptCharacters);
    return std::strtod(text.c_str(), nullptr);
}

}  // namespace

const std::array<ContextText, 7> contextTexts = {{
    {&Data::getComment, &Data::setComment, &Data::setCommentW},
    {&Data::getName, &Data::setName, &Data::setNameW},
    {&Data::getMachineName, &Data::setMachineName, &Data::setMachineNameW},
    {&Data::getMachinePosition, &Data::setMachinePosition, &Data::setMachinePositionW},
    {&Data::getSurfaceGroup, &Data::setSurfaceGroup, &Data::setSurfaceGroupW},
    {&Data::getClampingSystem, &Data::setClampingSystem, &Data::setClampingSystemW},
    {&Data::getReferenceAxisForOriginProgram, &Data::setReferenceAxisForOriginProgram,
     &Data::setReferenceAxisForOriginProgramW},
}};

bool ContextFields::operator==(const ContextFields& other) const {
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (std::isnan(numbers[i]) && std::isnan(other.numbers[i])) continue;
        if (numbers[i] != other.numbers[i]) return false;
        if (std::signbit(numbers[i]) != std::signbit(other.numbers[i])) return false;
    }
    return texts == other.texts;
}

ContextFields fieldsOf(const CMachineContextData& data) {
    ContextFields fields;
    for (std::size_t i = 0; i < contextTexts.size(); ++i)
        fields.texts[i] = (data.*contextTexts[i].get)();
    auto& numbers = fields.numbers;
    data.getOriginProgram(numbers[0], numbers[1], numbers[2]);
    numbers[3] = data.getMachineProximity();
    numbers[4] = data.getClampingProximity();
    return fields;
}

void setFields(CMachineContextData& data, const ContextFields& fields) {
    for (std::size_t i = 0; i < contextTexts.size(); ++i)
        (data.*contextTexts[i].set)(fields.texts[i]);
    data.setOriginProgram(fields.numbers[0], fields.numbers[1], fields.numbers[2]);
    data.setMachineProximity(fields.numbers[3]);
    data.setClampingProximity(fields.numbers[4]);
}

ContextFields distinctFields() {
    ContextFields fields;
    for (std::size_t i = 0; i < fields.texts.size(); ++i)
        fields.texts[i] = "old text " + std::to_string(i);
    fields.numbers = {-71, -72, -73, -74, -75};
    return fields;
}

ContextFields readBack(const ContextFields& written, const ContextFields& before) {
    ContextFields expected;
    for (std::size_t i = 0; i < written.texts.size(); ++i) {
        const bool hasNoKey =
            (i == surfaceGroupText || i == clampingSystemText) && written.texts[i].empty();
        expected.texts[i] = hasNoKey ? before.texts[i] : textReadBack(written.texts[i]);
    }
    for (std::size_t i = 0; i < written.numbers.size(); ++i) {
        const double number = written.numbers[i];
        expected.numbers[i] = i < 3 ? originReadBack(number) : proximityReadBack(number);
    }
    // A record stores a narrow text as characters.
    CMachineContextData data;
    setFields(data, expected);
    return fieldsOf(data);
}

}  // namespace trv::fuzz
