#pragma once

/// @file
/// The check of an XML document before it reaches the DOM parser.

#include <QString>

#include <functional>
#include <utility>

namespace trv {

/// Checks the characters of a document piece by piece, before the parser gets them.
///
/// It rejects a document, before the parser gets the offending character, if the document
/// - nests too deeply: the parser recurses;
/// - declares an entity, which can grow without bound;
/// - has a character that XML does not allow, or a reference to one, in a text, a comment, a CDATA
///   section or a processing instruction. Under ReturnNullNode most of them crash Qt's DOM.
///
/// In the same places it replaces the characters that XML allows and Qt's DOM cannot hold: those
/// beyond U+FFFF, and some letters in the names of entities. The library uses none of these texts.
/// The length of the text does not change, so that lines and columns stay correct.
///
/// Attributes and the literals of a document type are not changed: Qt accepts every character there
/// but U+FFFE and U+FFFF, for which it reports an error of its own.
///
/// The count of open elements is exact up to the place at which the document stops being
/// well-formed, and there the parser stops.
class XmlScreen {
public:
    enum class Refusal { none, tooDeep, entityDeclaration, character };

    /// Counted from 1, in UTF-16 units, as the parser counts.
    struct Position {
        qint64 line = 1;
        qint64 column = 1;
    };

    /// Takes a start tag, from "<" to ">", and the place of its ">" or "/>".
    using TagVisitor = std::function<void(const QString& tag, Position end)>;

    /// @param maxDepth  how many elements, or groups in a document type, may be open at once
    /// @param visitTag  is called for each start tag; may be empty
    explicit XmlScreen(int maxDepth, TagVisitor visitTag = {})
        : maxDepth_(maxDepth), visitTag_(std::move(visitTag)) {}

    /// Takes the next piece of the document and returns what the parser may get of it, after what
    /// was held back before. The result may be empty. After a refusal it ends before the offending
    /// character, and no further piece may be given.
    QString pass(QString piece);

    /// What is held back at the end of the document.
    QString rest() { return std::move(text_); }

    Refusal refusal() const { return refusal_; }

    /// The offending place. REQUIRES: a refusal.
    Position refusedAt() const { return refusedAt_; }

    /// The number of the character that is not allowed, which may be beyond U+10FFFF in a
    /// reference. REQUIRES: Refusal::character.
    uint refusedCharacter() const { return refusedCharacter_; }

private:
    enum class Place {
        content,
        reference,
        lowSurrogate,
        markup,
        startTag,
        endTag,
        declaration,
        comment,
        cdata,
        instruction,
        documentType,
    };

    void see(ushort& character);
    void seeContent(ushort& character);
    void seeText(ushort unit, int start, uint code);
    void seeReference(ushort character);
    void endReference();
    void seeNumber(uint number);
    void endRun();
    void seeHighSurrogate();
    void seeLowSurrogate(ushort& character);
    void seeMarkup(ushort character);
    void seeStartTag(ushort character);
    void endStartTag();
    void seeDeclaration(ushort character);
    void seeDocumentType(ushort character);
    bool consumeOpening(ushort character);
    void seeUntilClosed(ushort character, ushort closing, int repetitions);
    bool consumeQuoted(ushort character);
    void enter(Place place, Place afterwards);
    void open();
    void close();
    void countLine(ushort character);
    Position positionOf(int index) const { return {line_, index - lineStart_ + 1}; }
    void refuse(Refusal refusal, int index);
    void refuseCharacter(uint code, int index);
    QString release(int length);

    const int maxDepth_;
    const TagVisitor visitTag_;
    // The start tag up to the current character, if it is to be visited.
    QString tag_;
    int depth_ = 0;
    Refusal refusal_ = Refusal::none;
    Position refusedAt_;
    uint refusedCharacter_ = 0;

    Place place_ = Place::content;
    // The place after the end of the current comment, CDATA section or instruction.
    Place afterwards_ = Place::content;
    // The place in which the current surrogate pair is.
    Place beforePair_ = Place::content;
    // The quote that ends the current literal, 0 outside literals.
    ushort quote_ = 0;
    ushort previous_ = 0;
    // The number of closing characters ("-", "]" or "?") directly before the current one.
    int repetitions_ = 0;
    // The beginning of a "<!" construct, while it may still become one that is checked.
    QString opening_;
    bool inSubset_ = false;
    bool inDeclaration_ = false;

    // The current run of text: from markup or a reference to an entity to the next one. The parser
    // drops a run of white space, also one with form feeds and vertical tabs, which no other run
    // may hold.
    bool runHasText_ = false;
    ushort feed_ = 0;
    Position feedAt_;

    // The current piece, after what was held back before it: a reference and a surrogate pair are
    // checked as a whole.
    QString text_;
    int index_ = 0;
    // The end of what the parser gets: before what is refused or held back.
    int passed_ = 0;
    int referenceStart_ = 0;

    qint64 line_ = 1;
    // The index of the current line's beginning in text_; negative if that is before it.
    qint64 lineStart_ = 0;
    bool lineStartsAfterReturn_ = false;
};

}  // namespace trv
