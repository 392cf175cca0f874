#pragma once

/// @file
/// How text and names cross the border between a host's strings and QString. The Qt classes of the
/// library convert here and nowhere else.
///
/// Narrow text is in the local 8-bit code page: the ANSI code page on Windows, UTF-8 elsewhere in
/// every locale. It ends at its first zero byte. Wide text is UTF-16 or UTF-32, as wide as wchar_t
/// is, and keeps its zeros.
///
/// Threads: any.

#include <QString>

#include <filesystem>
#include <string>

namespace trv {

/// A null pointer reads as an empty text.
QString fromNarrow(const char* text);
QString fromNarrow(const std::string& text);
QString fromWide(const std::wstring& text);

/// What the code page cannot represent comes back as Qt's conversion makes it.
std::string toNarrow(const QString& text);
std::wstring toWide(const QString& text);

/// The form of a path that Qt and the operating system take: on POSIX each "\" is a "/".
QString nativePath(const QString& path);

/// Whether the path names the file that its text shows. An empty one names none; with a zero
/// inside, the operating system would take the part before it and open another file. Half a
/// surrogate pair has no form in UTF-8 and would come out as a "?".
bool isOpenable(const QString& path);

/// The path as a standard file call takes it, "\" translated where needed. REQUIRES: isOpenable().
std::filesystem::path systemPath(const QString& path);

/// The path as the runtime takes it, in narrow text.
///
/// @param narrow  written on success only
/// @return whether narrow text can hold the path: the ANSI code page of Windows lacks characters,
///         and its nearest ones would name another file
bool runtimePath(const QString& path, std::string& narrow);

}  // namespace trv
