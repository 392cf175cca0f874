#include <cli/output_buffer.h>
#include <cli/text_escapes.h>

#include <QChar>

namespace trv::cli {
namespace {

// A character, or half of a surrogate pair if the other half is missing.
struct Character {
    uint code;
    /// In code units.
    int length;
};

Character characterAt(const QString& text, int place) {
    const QChar first = text.at(place);
    if (first.isHighSurrogate() && place + 1 < text.size()) {
        const QChar second = text.at(place + 1);
        if (second.isLowSurrogate()) return {QChar::surrogateToUcs4(first, second), 2};
    }
    return {first.unicode(), 1};
}

// Whether a terminal or an editor does not show the character, or shows other characters
// differently because of it.
bool isHidden(uint code) {
    constexpr uint firstTag = 0xE0000;
    constexpr uint lastTag = 0xE007F;
    switch (QChar::category(code)) {
        case QChar::Other_Control:
        case QChar::Other_Format:
        case QChar::Other_Surrogate:
        case QChar::Separator_Line:
        case QChar::Separator_Paragraph:
            return true;
        default:
            // Not all tag characters are assigned.
            return code >= firstTag && code <= lastTag;
    }
}

QString hexadecimal(uint number, int digits) {
    return QStringLiteral("%1").arg(number, digits, 16, QLatin1Char('0'));
}

QString escapeForText(uint code) {
    constexpr uint pastLatin = 0x100;
    constexpr uint pastBasicPlane = 0x10000;
    if (code == '\\') return QStringLiteral("\\\\");
    if (code < pastLatin) return QStringLiteral("\\x") + hexadecimal(code, 2);
    if (code < pastBasicPlane) return QStringLiteral("\\u") + hexadecimal(code, 4);
    return QStringLiteral("\\U") + hexadecimal(code, 8);
}

QString escapeForJson(uint code) {
    const auto unit = [](uint value) { return QStringLiteral("\\u") + hexadecimal(value, 4); };
    if (!QChar::requiresSurrogates(code)) return unit(code);
    return unit(QChar::highSurrogate(code)) + unit(QChar::lowSurrogate(code));
}

template <class Predicate>
QString escaped(const QString& text, Predicate isEscaped, QString (*escape)(uint)) {
    QString result;
    result.reserve(text.size());
    for (int place = 0; place < text.size();) {
        const Character character = characterAt(text, place);
        if (isEscaped(character.code)) {
            result += escape(character.code);
        } else {
            result.append(text.constData() + place, character.length);
        }
        place += character.length;
    }
    return result;
}

void appendCharacter(std::string& out, uint code) {
    const auto append = [&out](uint byte) { out += static_cast<char>(byte); };
    const auto appendRest = [&](int shift) { append(0x80 | (code >> shift & 0x3F)); };
    if (code < 0x80) {
        append(code);
    } else if (code < 0x800) {
        append(0xC0 | code >> 6);
        appendRest(0);
    } else if (code < 0x10000) {
        append(0xE0 | code >> 12);
        appendRest(6);
        appendRest(0);
    } else {
        append(0xF0 | code >> 18);
        appendRest(12);
        appendRest(6);
        appendRest(0);
    }
}

// The same as escaped(), in UTF-8: for a text of each component, without a QString and its
// conversion.
template <class Predicate>
void appendEscaped(std::string& out, const QString& text, Predicate isEscaped,
                   QString (*escape)(uint)) {
    for (int place = 0; place < text.size();) {
        const Character character = characterAt(text, place);
        if (isEscaped(character.code)) {
            appendUtf8(out, escape(character.code));
        } else {
            appendCharacter(out, character.code);
        }
        place += character.length;
    }
}

bool isEscapedInText(uint code) {
    return code == '\\' || isHidden(code);
}

// The short escapes of QJsonDocument.
QString shortEscapeForJson(uint code) {
    switch (code) {
        case '"':
            return QStringLiteral("\\\"");
        case '\\':
            return QStringLiteral("\\\\");
        case '\b':
            return QStringLiteral("\\b");
        case '\f':
            return QStringLiteral("\\f");
        case '\n':
            return QStringLiteral("\\n");
        case '\r':
            return QStringLiteral("\\r");
        case '\t':
            return QStringLiteral("\\t");
        default:
            return escapeForJson(code);
    }
}

}  // namespace

QString escapedText(const QString& text) {
    return escaped(text, isEscapedInText, escapeForText);
}

void appendEscapedText(std::string& out, const QString& text) {
    appendEscaped(out, text, isEscapedInText, escapeForText);
}

QString escapedExceptBackslash(const QString& text) {
    return escaped(text, isHidden, escapeForText);
}

QString escapedJson(const QString& json) {
    return escaped(json, isHidden, escapeForJson);
}

void appendJsonString(std::string& out, const QString& text) {
    out += '"';
    appendEscaped(
        out, text, [](uint code) { return code == '"' || isEscapedInText(code); },
        shortEscapeForJson);
    out += '"';
}

}  // namespace trv::cli
