#pragma once

/// @file
/// How text and names cross the border between a host's strings and QString. The Qt classes of the
/// library convert here and nowhere else.
///
/// Narrow text is in the local 8-bit code page: the ANSI code page on Windows, UTF-8 elsewhere, in
/// every locale and under every codec that a host sets in Qt. It ends at its first zero byte. Wide
/// text is UTF-16 or UTF-32, as wide as wchar_t is, and keeps its zeros. A U+FEFF at the beginning
/// is a character like any other.
///
/// Threads: any.

#include <QString>

#include <filesystem>
#include <string>
#include <string_view>

namespace trv {

/// A null pointer reads as an empty text. What is not UTF-8 becomes U+FFFD on POSIX.
QString fromNarrow(const char* text);
QString fromNarrow(const std::string& text);
QString fromWide(const std::wstring& text);

/// What the code page cannot represent comes back as Qt's conversion makes it.
std::string toNarrow(const QString& text);
std::wstring toWide(const QString& text);

/// toNarrow() of a text in UTF-8. On POSIX nothing is converted.
///
/// REQUIRES: valid UTF-8 without zeros.
std::string narrowFromUtf8(std::string_view text);

/// A path that a host gives. As a text it may change on its way into QString: a byte that is not
/// UTF-8 becomes U+FFFD, two units of UTF-32 that are no characters become one character. Then the
/// text names another file than the host does.
struct HostPath {
    QString text;
    /// Whether the text names what the host names.
    bool isExact = true;

    /// The text, or an empty one, which no file has, if the path is not exact.
    QString openable() const { return isExact ? text : QString(); }
};

/// A null pointer reads as an empty path. On Windows every path is exact.
HostPath pathFromNarrow(const char* path);
HostPath pathFromNarrow(const std::string& path);
HostPath pathFromWide(const std::wstring& path);

/// A narrow path in wide text that keeps what pathFromNarrow() finds: pathFromWide() gives the same
/// text of it and is exact if and only if pathFromNarrow() is.
std::wstring widePath(const std::string& path);

/// The form of a path that Qt and the operating system take: on POSIX each "\" is a "/".
QString nativePath(const QString& path);

/// Whether the path names the file that its text shows. An empty one names none; with a zero
/// inside, the operating system would take the part before it and open another file. Half a
/// surrogate pair has no form in UTF-8 and would come out as a "?".
bool isOpenable(const QString& path);

/// The path as a standard file call takes it, "\" translated where needed. REQUIRES: isOpenable().
std::filesystem::path systemPath(const QString& path);

/// A path as the operating system has it: on POSIX UTF-8, on Windows UTF-16. Exact if systemPath()
/// gives it back: on POSIX not if it holds a "\".
HostPath pathFromSystem(const std::filesystem::path::string_type& path);

/// The path as the runtime takes it, in narrow text.
///
/// @param narrow  written on success only
/// @return whether narrow text can hold the path: the ANSI code page of Windows lacks characters,
///         and its nearest ones would name another file
bool runtimePath(const QString& path, std::string& narrow);

}  // namespace trv
