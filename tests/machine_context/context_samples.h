#pragma once

/// @file
/// Machine context records for tests: all their fields as one value, and samples of them.

#include <trvfiles/facade/CQvFilesIO.h>
#include <trvfiles/machine_context/CMachineContextData.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <filesystem>
#include <locale>
#include <ostream>
#include <sstream>
#include <string>

namespace trv::testing {

/// A text of the record, and its section and key in the file.
struct ContextText {
    const char* section;
    const char* key;
    std::string (CMachineContextData::*get)() const;
    void (CMachineContextData::*set)(const std::string&);
    std::wstring (CMachineContextData::*getWide)() const;
    void (CMachineContextData::*setWide)(const std::wstring&);
};

inline constexpr std::size_t surfaceGroupText = 4;
inline constexpr std::size_t clampingSystemText = 5;

inline const std::array<ContextText, 7> contextTexts = {{
    {"header", "comment", &CMachineContextData::getComment, &CMachineContextData::setComment,
     &CMachineContextData::getCommentW, &CMachineContextData::setCommentW},
    {"header", "name", &CMachineContextData::getName, &CMachineContextData::setName,
     &CMachineContextData::getNameW, &CMachineContextData::setNameW},
    {"machine", "name", &CMachineContextData::getMachineName, &CMachineContextData::setMachineName,
     &CMachineContextData::getMachineNameW, &CMachineContextData::setMachineNameW},
    {"machine", "position", &CMachineContextData::getMachinePosition,
     &CMachineContextData::setMachinePosition, &CMachineContextData::getMachinePositionW,
     &CMachineContextData::setMachinePositionW},
    {"part", "surface_group", &CMachineContextData::getSurfaceGroup,
     &CMachineContextData::setSurfaceGroup, &CMachineContextData::getSurfaceGroupW,
     &CMachineContextData::setSurfaceGroupW},
    {"clamping_system", "name", &CMachineContextData::getClampingSystem,
     &CMachineContextData::setClampingSystem, &CMachineContextData::getClampingSystemW,
     &CMachineContextData::setClampingSystemW},
    {"postpro", "reference_axis", &CMachineContextData::getReferenceAxisForOriginProgram,
     &CMachineContextData::setReferenceAxisForOriginProgram,
     &CMachineContextData::getReferenceAxisForOriginProgramW,
     &CMachineContextData::setReferenceAxisForOriginProgramW},
}};

inline std::string nameOf(const ContextText& text) {
    return std::string(text.section) + "." + text.key;
}

/// The content of a record, for comparing and printing. A NaN equals a NaN. -0.0 does not equal
/// 0.0.
struct ContextFields {
    explicit ContextFields(const CMachineContextData& data) {
        for (std::size_t i = 0; i < texts.size(); ++i)
            texts[i] = (data.*contextTexts[i].getWide)();
        data.getOriginProgram(numbers[0], numbers[1], numbers[2]);
        numbers[3] = data.getMachineProximity();
        numbers[4] = data.getClampingProximity();
    }

    bool operator==(const ContextFields& other) const {
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            const double left = numbers[i];
            const double right = other.numbers[i];
            if (std::isnan(left) && std::isnan(right)) continue;
            if (left != right || std::signbit(left) != std::signbit(right)) return false;
        }
        return texts == other.texts;
    }

    std::array<std::wstring, contextTexts.size()> texts;
    std::array<double, 5> numbers = {};
};

inline void PrintTo(const ContextFields& fields, std::ostream* stream) {
    for (std::size_t i = 0; i < fields.texts.size(); ++i)
        *stream << nameOf(contextTexts[i]) << '=' << ::testing::PrintToString(fields.texts[i])
                << '\n';
    std::ostringstream numbers;
    numbers.imbue(std::locale::classic());
    numbers.precision(17);
    for (const double number : fields.numbers)
        numbers << number << ' ';
    *stream << numbers.str();
}

/// The record whose file is tests/data/machine_context/first_operation.mctx.
inline CMachineContextData firstOperation() {
    CMachineContextData data;
    data.setName("Setup A");
    data.setComment("first op");
    data.setMachineName("MILL5");
    data.setMachinePosition("POS1");
    data.setMachineProximity(10);
    data.setOriginProgram(12.5, 0, -3);
    data.setReferenceAxisForOriginProgram("transfo.dat");
    data.setClampingSystem("VISE");
    data.setClampingProximity(2.5);
    return data;
}

/// Every field has a different value, which comes back from a file unchanged.
inline CMachineContextData allFields() {
    CMachineContextData data = firstOperation();
    data.setSurfaceGroup("FACES");
    return data;
}

/// Every field has a value that no file of these tests sets.
inline CMachineContextData prefilled() {
    CMachineContextData data;
    for (const ContextText& text : contextTexts)
        (data.*text.set)("old " + nameOf(text));
    data.setOriginProgram(-71, -72, -73);
    data.setMachineProximity(-74);
    data.setClampingProximity(-75);
    return data;
}

inline EFileIOStatus readContext(const std::filesystem::path& path, CMachineContextData& data) {
    return CQvFilesIO::sReadMachineContext(path.wstring(), data);
}

inline EFileIOStatus writeContext(const std::filesystem::path& path,
                                  const CMachineContextData& data) {
    return CQvFilesIO::sWriteMachineContext(path.wstring(), data);
}

}  // namespace trv::testing
