#pragma once

/// @file
/// Conversions of text and names between a host's strings and QString. The Qt classes of the
/// library convert with these functions only.
///
/// Narrow text is in the local 8-bit code page: the ANSI code page on Windows, UTF-8 elsewhere, in
/// every locale and under every codec that a host sets in Qt. It ends at its first zero byte. Wide
/// text is UTF-16 if wchar_t has 16 bits and UTF-32 otherwise, and keeps its zeros. A U+FEFF at the
/// beginning is an ordinary character.
///
/// Threads: any.

#include <QString>

#include <filesystem>
#include <string>
#include <string_view>

namespace trv {

/// nullptr gives an empty text. On POSIX bytes that are not UTF-8 become U+FFFD.
QString fromNarrow(const char* text);
QString fromNarrow(const std::string& text);
QString fromWide(const std::wstring& text);

/// Text in UTF-8 on every system, with its zeros. Bytes that are not UTF-8 become U+FFFD.
///
/// REQUIRES: at most 2^31 - 1 bytes.
QString fromUtf8(std::string_view text);

/// Characters that the code page lacks are replaced by Qt's conversion.
std::string toNarrow(const QString& text);
std::wstring toWide(const QString& text);

/// Narrow text as wide text and back.
std::wstring wideText(const std::string& narrow);
std::string narrowText(const std::wstring& wide);

/// toNarrow() of a text in UTF-8. On POSIX nothing is converted.
///
/// REQUIRES: valid UTF-8 without zeros.
std::string narrowFromUtf8(std::string_view text);

/// A path that a host gives. The conversion to QString may change it: a byte that is not UTF-8
/// becomes U+FFFD, and two surrogates in UTF-32 become one character. Then the text is the path of
/// another file.
struct HostPath {
    QString text;
    /// Whether the text is the path that the host has given.
    bool isExact = true;

    /// The text; empty if the path is not exact, because no file has an empty path.
    QString openable() const { return isExact ? text : QString(); }
};

/// nullptr gives an empty path. On Windows every path is exact.
HostPath pathFromNarrow(const char* path);
HostPath pathFromNarrow(const std::string& path);
HostPath pathFromWide(const std::wstring& path);

/// A narrow path as wide text, without loss: pathFromWide() of the result gives the same text as
/// pathFromNarrow(), and is exact if and only if that is.
std::wstring widePath(const std::string& path);

/// The form of a path that Qt and the operating system accept: on POSIX each "\" becomes a "/".
QString nativePath(const QString& path);

/// Whether a file can have this path. An empty path belongs to no file. Of a path with a zero the
/// operating system would use the part before it, and open another file. A single surrogate has no
/// form in UTF-8: it would become a "?".
bool isOpenable(const QString& path);

/// The path for a standard file call, as nativePath() gives it. REQUIRES: isOpenable().
std::filesystem::path systemPath(const QString& path);

/// A path as the operating system has it: on POSIX UTF-8, on Windows UTF-16. Exact if systemPath()
/// gives it back: on POSIX not if it holds a "\".
HostPath pathFromSystem(const std::filesystem::path::string_type& path);

/// The path for the runtime, in narrow text.
///
/// @param narrow  written on success only
/// @return whether narrow text can hold the path: the ANSI code page of Windows lacks characters,
///         and the nearest ones that it has would give the path of another file
bool runtimePath(const QString& path, std::string& narrow);

}  // namespace trv
