#pragma once

/// @file
/// Machine context records as plain values, and the values that come back from a file.

#include <trvfiles/machine_context/CMachineContextData.h>

#include <array>
#include <cstddef>
#include <string>

namespace trv::fuzz {

/// A text of the record in its narrow and its wide form.
struct ContextText {
    std::string (CMachineContextData::*get)() const;
    void (CMachineContextData::*set)(const std::string&);
    void (CMachineContextData::*setWide)(const std::wstring&);
};

inline constexpr std::size_t surfaceGroupText = 4;
inline constexpr std::size_t clampingSystemText = 5;

extern const std::array<ContextText, 7> contextTexts;

/// The content of a record: its texts in narrow form, the origin and the proximities.
struct ContextFields {
    std::array<std::string, 7> texts;
    std::array<double, 5> numbers = {};

    /// A NaN equals a NaN. -0.0 does not equal 0.0.
    bool operator==(const ContextFields& other) const;
};

ContextFields fieldsOf(const CMachineContextData& data);
void setFields(CMachineContextData& data, const ContextFields& fields);

/// Fields with values that no file is likely to set.
ContextFields distinctFields();

/// The fields of a record that has read a file. `before` are its fields before the read, `written`
/// those of the record that was written to the file.
ContextFields readBack(const ContextFields& written, const ContextFields& before);

}  // namespace trv::fuzz
