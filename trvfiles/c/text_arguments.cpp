#include <trvfiles/c/refusal.h>
#include <trvfiles/c/text_arguments.h>
#include <trvfiles/support/platform.h>
#include <trvfiles/text/text_conversion.h>

#include <algorithm>
#include <cstring>

namespace trv::c {
namespace {

bool isAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

std::string toUtf8(const QString& text) {
    return text.toUtf8().toStdString();
}

bool isUtf8(std::string_view text) {
    return isAscii(text) || toUtf8(fromUtf8(text)) == text;
}

Refusal badText(const char* reason) {
    return {TRVFILES_BAD_TEXT, reason};
}

void requireText(std::string_view text) {
    if (text.size() > TRVFILES_MAX_TEXT_LENGTH) throw badText("a text is too long");
    if (!isUtf8(text)) throw badText("a text is not UTF-8");
}

// Windows replaces what the code page lacks by a similar character without an error.
std::string narrowed(std::string_view text) {
    if (platform::narrow_text_is_utf8() || isAscii(text)) return std::string(text);
    const QString wide = fromUtf8(text);
    std::string narrow = toNarrow(wide);
    if (fromNarrow(narrow) != wide) throw badText("the code page of the program lacks a character");
    return narrow;
}

}  // namespace

std::string_view textArgument(const char* text) {
    require(text);
    // The zero may be beyond the maximum, which the library does not read.
    const void* end = std::memchr(text, 0, TRVFILES_MAX_TEXT_LENGTH + 1);
    if (end == nullptr) throw badText("a text is too long");
    const std::string_view argument(text,
                                    static_cast<std::size_t>(static_cast<const char*>(end) - text));
    requireText(argument);
    return argument;
}

std::string_view textArgument(std::string_view text) {
    if (text.find('\0') != std::string_view::npos) throw badText("a text contains a zero byte");
    requireText(text);
    return text;
}

std::string narrowArgument(const char* text) {
    return narrowed(textArgument(text));
}

std::string narrowArgument(std::string_view text) {
    return narrowed(textArgument(text));
}

std::wstring wideArgument(const char* text) {
    return toWide(fromUtf8(textArgument(text)));
}

QString pathArgument(const char* text) {
    return fromUtf8(textArgument(text));
}

std::string_view bytesArgument(const void* bytes, std::size_t length) {
    require(bytes != nullptr || length == 0, "the bytes are NULL");
    return {static_cast<const char*>(bytes), length};
}

std::string utf8FromNarrow(const std::string& text) {
    return isAscii(text) ? text : toUtf8(fromNarrow(text));
}

void appendUtf8(std::string& text, const std::string& added) {
    if (isAscii(added)) {
        text += added;
    } else {
        text += toUtf8(fromNarrow(added));
    }
}

std::string utf8FromWide(const std::wstring& text) {
    return toUtf8(fromWide(text));
}

}  // namespace trv::c
