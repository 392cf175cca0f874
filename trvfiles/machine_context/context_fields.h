#pragma once

/// @file
/// The fields of a machine context file: the one table that reading, writing and showing them use.
///
/// Threads: any.

#include <trvfiles/machine_context/CMachineContextData.h>

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace trv {

/// One key of a machine context file and its place in the record. A text has the functions for
/// texts, a proximity those for proximities; the origin has neither, since the record has one
/// function for its three numbers.
struct ContextField {
    const char* section;
    const char* key;
    /// Whether a section that has lines is an error without it.
    bool isRequired;
    /// Whether a file is written with it if it is empty. A section of which nothing is written has
    /// no header.
    bool isWrittenEmpty;
    std::string (CMachineContextData::*text)() const;
    void (CMachineContextData::*setText)(const std::string&);
    double (CMachineContextData::*proximity)() const;
    void (CMachineContextData::*setProximity)(double);

    bool isText() const { return text != nullptr; }
    bool isProximity() const { return proximity != nullptr; }

    /// "machine.name"
    std::string name() const;
};

/// What a written file has as "version" in its section "header". Reading ignores it.
inline constexpr int contextFormatVersion = 2;

inline constexpr std::size_t contextFieldCount = 10;

/// All of them, in the order in which a file is written and read.
const std::array<ContextField, contextFieldCount>& contextFields();

/// Whether each written file has this section.
bool isAlwaysWritten(std::string_view section);

/// A proximity as it is in a written file: rounded to single precision, with six decimals, at most
/// 19 characters of it.
std::string proximityText(double value);

/// An origin as it is in a written file: three numbers with six decimals, separated by blanks.
std::string originText(const double origin[3]);

/// What a written file has as the value of a field.
std::string storedText(const ContextField& field, const CMachineContextData& data);

/// What reading a number has found in a value.
enum class NumberReading { whole, beginning, none };

/// Sets a field to the value that a file has. Of a proximity the number at the beginning counts, or
/// 0 if there is none. An origin is the three numbers at the beginning; with fewer the record keeps
/// its origin.
///
/// @return whether the value is read as a whole, which a text always is
NumberReading setFromFile(const ContextField& field, const std::string& value,
                          CMachineContextData& data);

}  // namespace trv
