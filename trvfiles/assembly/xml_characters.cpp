#include <trvfiles/assembly/xml_characters.h>

#include <algorithm>
#include <limits>

namespace trv {
namespace {

// Not less than either base.
constexpr uint noDigit = 16;

uint hexadecimalDigit(ushort character) {
    if (character >= '0' && character <= '9') return character - uint{'0'};
    if (character >= 'a' && character <= 'f') return character - uint{'a'} + 10;
    if (character >= 'A' && character <= 'F') return character - uint{'A'} + 10;
    return noDigit;
}

unsigned byteAt(const char* at) {
    return static_cast<unsigned char>(*at);
}

bool isContinuation(const char* at) {
    return (byteAt(at) & 0xC0U) == 0x80;
}

}  // namespace

bool referencedNumber(QStringView digits, uint& number) {
    const bool isHexadecimal = digits.startsWith(QLatin1Char('x'));
    const uint base = isHexadecimal ? 16 : 10;
    if (isHexadecimal) digits = digits.mid(1);
    if (digits.isEmpty()) return false;
    quint64 value = 0;
    for (const QChar character : digits) {
        const uint digit = hexadecimalDigit(character.unicode());
        if (digit >= base) return false;
        value = value * base + digit;
        // Checked for each digit, so that 64 bits never overflow.
        if (value > std::numeric_limits<uint>::max()) return false;
    }
    number = static_cast<uint>(value);
    return true;
}

bool isPredefinedEntity(QStringView name) {
    const QLatin1String names[] = {QLatin1String("lt", 2), QLatin1String("gt", 2),
                                   QLatin1String("amp", 3), QLatin1String("quot", 4),
                                   QLatin1String("apos", 4)};
    return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

// Letters and letter numbers begin a name; digits and marks are valid after its beginning.
ushort plainNameCharacter(ushort character) {
    const QChar qtCharacter(character);
    if (character < 0x80) return character;
    if (qtCharacter.isLetter() || qtCharacter.category() == QChar::Number_Letter) return 'x';
    if (qtCharacter.isNumber() || qtCharacter.isMark()) return '0';
    return character;
}

// A zero byte is not a continuation, so no byte after it is read.
int utf8CharacterLength(const char* at) {
    const unsigned first = byteAt(at);
    if (first < 0xC2 || first > 0xF4 || !isContinuation(at + 1)) return 0;
    if (first < 0xE0) return 2;
    const unsigned second = byteAt(at + 1);
    if (!isContinuation(at + 2)) return 0;
    if (first < 0xF0) {
        const bool isOverlong = first == 0xE0 && second < 0xA0;
        const bool isSurrogate = first == 0xED && second >= 0xA0;
        const bool isNoncharacter = first == 0xEF && second == 0xBF && byteAt(at + 2) >= 0xBE;
        return isOverlong || isSurrogate || isNoncharacter ? 0 : 3;
    }
    const bool isOverlong = first == 0xF0 && second < 0x90;
    const bool isBeyondUnicode = first == 0xF4 && second >= 0x90;
    return isOverlong || isBeyondUnicode || !isContinuation(at + 3) ? 0 : 4;
}

}  // namespace trv
