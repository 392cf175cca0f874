#pragma once

/// @file
/// Machine context records as plain values, and what a file gives back of one.

#include <trvfiles/machine_context/CMachineContextData.h>

#include <array>
#include <cstddef>
#include <string>

namespace trv::fuzz {

/// A text of the record in both of its forms.
struct ContextText {
    std::string (CMachineContextData::*get)() const;
    void (CMachineContextData::*set)(const std::string&);
    void (CMachineContextData::*setWide)(const std::wstring&);
};

inline constexpr std::size_t surfaceGroupText = 4;
inline constexpr std::size_t clampingSystemText = 5;

extern const std::array<ContextText, 7> contextTexts;

/// Everything that a record holds: its texts in narrow form; the origin and the proximities.
struct ContextFields {
    std::array<std::string, 7> texts;
    std::array<double, 5> numbers = {};

    /// A NaN equals a NaN, -0.0 is not 0.0.
    bool operator==(const ContextFields& other) const;
};

ContextFields fieldsOf(const CMachineContextData& data);
void setFields(CMachineContextData& data, const ContextFields& fields);

/// Fields with values that no file is likely to set.
ContextFields distinctFields();

/// What a record with the fields `before` holds after it has read the file that a record with the
/// fields `written` was written to.
ContextFields readBack(const ContextFields& written, const ContextFields& before);

}  // namespace trv::fuzz
