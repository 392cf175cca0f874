#pragma once

/// @file
/// The characters of an XML document: those that XML allows and those that Qt's parser accepts.

#include <QChar>
#include <QString>
#include <QStringView>

namespace trv {

/// Whether XML 1.0 allows a character in a document: tab, line ends, and all from U+0020 to
/// U+10FFFF but surrogates, U+FFFE and U+FFFF. The other control characters are not allowed.
inline bool isXmlCharacter(uint code) {
    constexpr uint lastBeforeSurrogates = 0xD7FF;
    constexpr uint firstAfterSurrogates = 0xE000;
    constexpr uint firstNoncharacter = 0xFFFE;
    constexpr uint firstOfSecondPlane = 0x10000;
    if (code < 0x20) return code == '\t' || code == '\n' || code == '\r';
    return code <= lastBeforeSurrogates ||
           (code >= firstAfterSurrogates && code < firstNoncharacter) ||
           (code >= firstOfSecondPlane && code <= QChar::LastValidCodePoint);
}

/// The number that a character reference gives.
///
/// @param digits  what is between "&#" and ";"
/// @param number  written on success only
/// @return false if the parser rejects the reference itself: no digits, or more than 32 bits
bool referencedNumber(QStringView digits, uint& number);

/// Whether the name is one of the five entities that XML declares, each of which is a character.
bool isPredefinedEntity(QStringView name);

/// A replacement character in ASCII for a character of a name, which is valid at the same places:
/// at the beginning of a name, after its beginning, or nowhere. Qt's parser accepts letters in
/// names that its DOM does not.
ushort plainNameCharacter(ushort character);

/// The length in bytes of the character of UTF-8 at this place; 0 if it is malformed, U+FFFE or
/// U+FFFF, which Qt's parser takes for the end of its input.
///
/// REQUIRES: the byte is 128 or more; a zero byte follows somewhere.
int utf8CharacterLength(const char* at);

}  // namespace trv
