#include <trvfiles/assembly/xml_characters.h>
#include <trvfiles/assembly/xml_screen.h>

#include <algorithm>

namespace trv {
namespace {

// XML allows this character in texts, comments, CDATA sections and instructions, and no name has
// it.
constexpr ushort replacement = '!';

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
    index_ = text_.size();
    if (text_.isEmpty()) {
        text_ = std::move(piece);
    } else {
        text_ += piece;
    }
    auto* characters = reinterpret_cast<ushort*>(text_.data());
    const int size = text_.size();
    for (; index_ < size; ++index_) {
        see(characters[index_]);
        if (refusal_ != Refusal::none) return text_.left(passed_);
        if (characters[index_] <= '\r') countLine(characters[index_]);
    }
    // A reference or a pair that is not complete is held back for the next piece.
    if (place_ == Place::reference) return release(referenceStart_);
    return release(place_ == Place::lowSurrogate ? size - 1 : size);
}

// Removes the beginning of the text and returns it.
QString XmlScreen::release(int length) {
    lineStart_ -= length;
    referenceStart_ = 0;
    if (length == text_.size()) return std::exchange(text_, QString());
    QString beginning = text_.left(length);
    text_.remove(0, length);
    return beginning;
}

// Lines end with LF, CR or CR LF, as the parser counts them. CR LF may be in two pieces.
void XmlScreen::countLine(ushort character) {
    if (character == '\n') {
        const bool endsReturn = lineStartsAfterReturn_ && lineStart_ == index_;
        if (!endsReturn) ++line_;
    } else if (character == '\r') {
        ++line_;
    } else {
        return;
    }
    lineStart_ = index_ + 1;
    lineStartsAfterReturn_ = character == '\r';
}

void XmlScreen::refuse(Refusal refusal, int index) {
    refusal_ = refusal;
    refusedAt_ = positionOf(index);
    passed_ = index;
}

void XmlScreen::refuseCharacter(uint code, int index) {
    refuse(Refusal::character, index);
    refusedCharacter_ = code;
}

void XmlScreen::see(ushort& character) {
    switch (place_) {
        case Place::content:
            return seeContent(character);
        case Place::reference:
            return seeReference(character);
        case Place::lowSurrogate:
            return seeLowSurrogate(character);
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

void XmlScreen::seeContent(ushort& character) {
    if (character == '<') {
        place_ = Place::markup;
        endRun();
    } else if (character == '&') {
        place_ = Place::reference;
        referenceStart_ = index_;
    } else if (QChar::isHighSurrogate(character)) {
        seeHighSurrogate();
        seeText(replacement, index_, replacement);
    } else {
        seeText(character, index_, character);
    }
}

// Checks one character of a text. `unit` is the character that the parser makes of `code`, which
// begins at `start`.
void XmlScreen::seeText(ushort unit, int start, uint code) {
    if (!runHasText_ && (unit == '\v' || unit == '\f')) {
        if (feed_ == 0) feedAt_ = positionOf(start);
        feed_ = unit;
    } else if (!isXmlCharacter(unit)) {
        refuseCharacter(code, start);
    } else if (!QChar::isSpace(unit)) {
        runHasText_ = true;
        // The parser drops a run of white space, so a feed is refused only in a run with text.
        if (feed_ == 0) return;
        refuseCharacter(feed_, start);
        refusedAt_ = feedAt_;
    }
}

void XmlScreen::endRun() {
    runHasText_ = false;
    feed_ = 0;
}

void XmlScreen::seeHighSurrogate() {
    beforePair_ = place_;
    place_ = Place::lowSurrogate;
}

void XmlScreen::seeLowSurrogate(ushort& character) {
    place_ = beforePair_;
    auto* characters = reinterpret_cast<ushort*>(text_.data());
    if (!QChar::isLowSurrogate(character)) {
        return refuseCharacter(characters[index_ - 1], index_ - 1);
    }
    characters[index_ - 1] = character = replacement;
}

void XmlScreen::seeReference(ushort character) {
    if (character == ';') {
        place_ = Place::content;
        endReference();
    } else if (character == '<') {
        place_ = Place::markup;
    }
}

void XmlScreen::endReference() {
    auto* characters = reinterpret_cast<ushort*>(text_.data());
    const QStringView name =
        QStringView(text_).mid(referenceStart_ + 1, index_ - referenceStart_ - 1);
    if (name.startsWith(QLatin1Char('#'))) {
        uint number = 0;
        if (referencedNumber(name.mid(1), number)) seeNumber(number);
    } else if (isPredefinedEntity(name)) {
        seeText(replacement, referenceStart_, replacement);
    } else {
        // The parser makes a node of a reference to an unknown entity, and the node needs a name
        // that the DOM accepts.
        endRun();
        std::transform(characters + referenceStart_, characters + index_,
                       characters + referenceStart_, plainNameCharacter);
    }
}

// The parser takes only the lower 16 bits of the number. If these give a character that XML does
// not allow, but the number itself is one that XML allows, the whole reference is replaced.
void XmlScreen::seeNumber(uint number) {
    const auto unit = static_cast<ushort>(number);
    if (number == unit || isXmlCharacter(unit) || !isXmlCharacter(number)) {
        return seeText(unit, referenceStart_, number);
    }
    auto* characters = reinterpret_cast<ushort*>(text_.data());
    std::fill(characters + referenceStart_, characters + index_ + 1, replacement);
    seeText(replacement, referenceStart_, replacement);
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
        if (visitTag_) tag_ = QLatin1Char('<') + QString(QChar(character));
    }
}

void XmlScreen::seeStartTag(ushort character) {
    if (visitTag_) tag_ += QChar(character);
    if (consumeQuoted(character)) return;
    if (character == '>') endStartTag();
    previous_ = character;
}

void XmlScreen::endStartTag() {
    const bool isEmpty = previous_ == '/';
    if (isEmpty) close();
    place_ = Place::content;
    if (visitTag_) visitTag_(tag_, positionOf(isEmpty ? index_ - 1 : index_));
}

void XmlScreen::seeUntilClosed(ushort character, ushort closing, int repetitions) {
    if (character == closing) {
        ++repetitions_;
        return;
    }
    if (character == '>' && repetitions_ >= repetitions) {
        place_ = afterwards_;
    } else if (QChar::isHighSurrogate(character)) {
        seeHighSurrogate();
    } else if (!isXmlCharacter(character)) {
        refuseCharacter(character, index_);
    }
    repetitions_ = 0;
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
    if (consumeQuoted(character) || consumeOpening(character)) return;
    switch (character) {
        case '<':
            opening_ = QStringLiteral("<");
            break;
        // A ">" ends the document type only outside of its subset, "[...]".
        case '[':
            inSubset_ = true;
            break;
        case ']':
            if (!inDeclaration_) inSubset_ = false;
            break;
        case '(':
            // The parser recurses into the groups of a content model as it does into elements, so
            // both have the same limit.
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

// Consumes a character of the beginning of a construct inside a document type.
//
// @return whether the character is one
bool XmlScreen::consumeOpening(ushort character) {
    if (opening_.isEmpty()) return false;
    opening_ += QChar(character);
    if (opening_ == commentStart) {
        inDeclaration_ = false;
        enter(Place::comment, Place::documentType);
    } else if (opening_ == instructionStart) {
        enter(Place::instruction, Place::documentType);
    } else if (opening_ == entityStart) {
        refuse(Refusal::entityDeclaration, index_);
    } else if (mayBecome(opening_, commentStart) || mayBecome(opening_, entityStart)) {
        inDeclaration_ = true;
        return true;
    }
    const bool complete = place_ != Place::documentType || refusal_ != Refusal::none;
    opening_.clear();
    return complete;
}

// Consumes a character of a literal, of which the quotes are part.
//
// @return whether the character is one
bool XmlScreen::consumeQuoted(ushort character) {
    if (quote_ != 0) {
        if (character == quote_) quote_ = 0;
        return true;
    }
    if (character != '"' && character != '\'') return false;
    quote_ = character;
    return true;
}

void XmlScreen::enter(Place place, Place afterwards) {
    place_ = place;
    afterwards_ = afterwards;
}

void XmlScreen::open() {
    if (depth_ == maxDepth_) {
        refuse(Refusal::tooDeep, index_);
    } else {
        ++depth_;
    }
}

// In a document that is not well-formed more elements may be closed than opened.
void XmlScreen::close() {
    if (depth_ > 0) --depth_;
}

}  // namespace trv
