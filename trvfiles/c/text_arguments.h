#pragma once

/// @file
/// The texts of the C interface: UTF-8 from and to the forms that the library uses.
///
/// Threads: any.

#include <QString>

#include <cstddef>
#include <string>
#include <string_view>

namespace trv::c {

/// A text argument.
///
/// @throws Refusal if it is NULL, longer than TRVFILES_MAX_TEXT_LENGTH or not UTF-8
std::string_view textArgument(const char* text);

/// The same for a text that does not end with a zero. It may not contain one.
std::string_view textArgument(std::string_view text);

/// The argument in the local 8-bit code page.
///
/// @throws Refusal also if the code page lacks a character
std::string narrowArgument(const char* text);
std::string narrowArgument(std::string_view text);

/// The argument as wide text.
std::wstring wideArgument(const char* text);

/// The argument as a path that can be opened.
QString pathArgument(const char* text);

/// Bytes in memory. NULL means an empty text; its length has to be 0.
std::string_view bytesArgument(const void* bytes, std::size_t length);

/// Complete UTF-8: what is not text becomes U+FFFD.
std::string utf8FromNarrow(const std::string& text);
void appendUtf8(std::string& text, const std::string& added);
std::string utf8FromWide(const std::wstring& text);

}  // namespace trv::c
