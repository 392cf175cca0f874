#include <trvfiles/assembly/xml_screen.h>

#include <algorithm>

namespace trv {
namespace {

// Legal in every place where it may land, and part of no name.
constexpr ushort harmless = '!';

// The characters that a DOM text may hold: no control characters but tab and line ends, no halves
// of a character beyond U+FFFF, neither U+FFFE nor U+FFFF.
bool isBearable(ushort character) {
    if (character < 0x20) return character == '\t' || character == '\n' || character == '\r';
    return character < 0xD800 || (character > 0xDFFF && character < 0xFFFE);
}

// An ASCII character that is as good in a name as the given one: at its beginning, behind its
// beginning, or not at all.
ushort plainNameCharacter(ushort character) {
    const QChar qtCharacter(character);
    if (character < 0x80) return character;
    if (qtCharacter.isLetter() || qtCharacter.category() == QChar::Number_Letter) return 'x';
    if (qtCharacter.isNumber() || qtCharacter.isMark()) return '0';
    return character;
}

bool mayBecome(const QString& opening, QLatin1String construct) {
    return opening.size() <= construct.size() &&
           QLatin1String(construct.data(), opening.size()) == opening;
}

constexpr QLatin1String commentStart("<!--", 4);
constexpr QLatin1String cdataStart("<![CDATA[", 9);
constexpr QLatin1String documentTypeStart("<!DOCTYPE", 9);
constexpr QLatin1String entityStart("<!ENTITY", 8);
constexpr QLatin1String instructionStart("<?", 2);

}  // namespace

QString XmlScreen::pass(QString piece) {
    int index = text_.size();
    if (text_.isEmpty()) {
        text_ = std::move(piece);
    } else {
        text_ += piece;
    }
    auto* characters = reinterpret_cast<ushort*>(text_.data());
    const int size = text_.size();
    while (index < size) {
        see(characters[index], index);
        if (refusal_ != Refusal::none) break;
        ++index;
    }
    const int passed = place_ == Place::reference ? referenceStart_ : index;
    referenceStart_ = 0;
    if (passed == size) return std::exchange(text_, QString());
    QString beginning = text_.left(passed);
    text_.remove(0, passed);
    return beginning;
}

void XmlScreen::see(ushort& character, int index) {
    switch (place_) {
        case Place::content:
            return seeContent(character, index);
        case Place::reference:
            return seeReference(character, index);
        case Place::markup:
            return seeMarkup(character);
        case Place::startTag:
            return seeStartTag(character);
        case Place::endTag:
            if (character == '>') place_ = Place::content;
            return;
        case Place::declaration:
            return seeDeclaration(character);
        case Place::comment:
            return seeUntilClosed(character, '-', 2);
        case Place::cdata:
            return seeUntilClosed(character, ']', 2);
        case Place::instruction:
            return seeUntilClosed(character, '?', 1);
        case Place::documentType:
            return seeDocumentType(character);
    }
}

void XmlScreen::seeContent(ushort& character, int index) {
    if (character == '<') {
        place_ = Place::markup;
    } else if (character == '&') {
        place_ = Place::reference;
        referenceStart_ = index;
    } else if (!isBearable(character)) {
        character = harmless;
    }
}

void XmlScreen::seeReference(ushort character, int index) {
    if (character == ';') {
        disarmReference(index);
        place_ = Place::content;
    } else if (character == '<') {
        place_ = Place::markup;
    }
}

// The parser makes a text of a character reference, and a node of a named one that nothing
// declares: it bears neither an illegal character in the first nor, in the second, every letter
// that it reads.
void XmlScreen::disarmReference(int end) {
    const QStringRef name = text_.midRef(referenceStart_ + 1, end - referenceStart_ - 1);
    auto* characters = reinterpret_cast<ushort*>(text_.data());
    if (!name.startsWith(QLatin1Char('#'))) {
        std::transform(characters + referenceStart_, characters + end, characters + referenceStart_,
                       plainNameCharacter);
        return;
    }
    const bool hexadecimal = name.startsWith(QLatin1String("#x"));
    bool isNumber = false;
    const uint code =
        hexadecimal ? name.mid(2).toUInt(&isNumber, 16) : name.mid(1).toUInt(&isNumber);
    // The parser takes the lower half of a number beyond U+FFFF.
    if (isNumber && !isBearable(static_cast<ushort>(code))) {
        std::fill(characters + referenceStart_, characters + end + 1, harmless);
    }
}

void XmlScreen::seeMarkup(ushort character) {
    if (character == '/') {
        close();
        place_ = Place::endTag;
    } else if (character == '?') {
        enter(Place::instruction, Place::content);
    } else if (character == '!') {
        opening_ = QStringLiteral("<!");
        place_ = Place::declaration;
    } else {
        open();
        previous_ = character;
        place_ = Place::startTag;
    }
}

void XmlScreen::seeStartTag(ushort character) {
    if (isQuoted(character)) return;
    if (character == '>') {
        if (previous_ == '/') close();
        place_ = Place::content;
    }
    previous_ = character;
}

void XmlScreen::seeDeclaration(ushort character) {
    opening_ += QChar(character);
    if (opening_ == commentStart) {
        enter(Place::comment, Place::content);
    } else if (opening_ == cdataStart) {
        enter(Place::cdata, Place::content);
    } else if (opening_ == documentTypeStart) {
        place_ = Place::documentType;
        opening_.clear();
    } else if (!mayBecome(opening_, commentStart) && !mayBecome(opening_, cdataStart) &&
               !mayBecome(opening_, documentTypeStart)) {
        place_ = Place::content;
    }
}

void XmlScreen::seeDocumentType(ushort character) {
    if (isQuoted(character) || seeOpening(character)) return;
    switch (character) {
        case '<':
            opening_ = QStringLiteral("<");
            break;
        case '[':
            inSubset_ = true;
            break;
        case ']':
            if (!inDeclaration_) inSubset_ = false;
            break;
        case '(':
            // The parser recurses into the groups of a content model as it does into elements.
            open();
            break;
        case ')':
            close();
            break;
        case '>':
            if (inDeclaration_) {
                inDeclaration_ = false;
            } else if (!inSubset_) {
                place_ = Place::content;
            }
            break;
        default:
            break;
    }
}

// Inside a document type: whether the character goes on with the beginning of a construct.
bool XmlScreen::seeOpening(ushort character) {
    if (opening_.isEmpty()) return false;
    opening_ += QChar(character);
    if (opening_ == commentStart) {
        inDeclaration_ = false;
        enter(Place::comment, Place::documentType);
    } else if (opening_ == instructionStart) {
        enter(Place::instruction, Place::documentType);
    } else if (opening_ == entityStart) {
        refusal_ = Refusal::entityDeclaration;
    } else if (mayBecome(opening_, commentStart) || mayBecome(opening_, entityStart)) {
        inDeclaration_ = true;
        return true;
    }
    const bool complete = place_ != Place::documentType || refusal_ != Refusal::none;
    opening_.clear();
    return complete;
}

void XmlScreen::seeUntilClosed(ushort& character, ushort closing, int repetitions) {
    if (character == closing) {
        ++repetitions_;
        return;
    }
    if (character == '>' && repetitions_ >= repetitions) {
        place_ = afterwards_;
    } else if (!isBearable(character)) {
        character = harmless;
    }
    repetitions_ = 0;
}

// Whether the character belongs to a literal, its quotes included.
bool XmlScreen::isQuoted(ushort character) {
    if (quote_ != 0) {
        if (character == quote_) quote_ = 0;
        previous_ = character;
        return true;
    }
    if (character != '"' && character != '\'') return false;
    quote_ = character;
    return true;
}

void XmlScreen::enter(Place place, Place afterwards) {
    place_ = place;
    afterwards_ = afterwards;
    repetitions_ = 0;
    opening_.clear();
}

void XmlScreen::open() {
    if (depth_ == deepest_) {
        refusal_ = Refusal::tooDeep;
    } else {
        ++depth_;
    }
}

void XmlScreen::close() {
    if (depth_ > 0) --depth_;
}

}  // namespace trv
