#pragma once

/// @file
/// What an XML document may not hold when it reaches the DOM parser.

#include <QString>

#include <utility>

namespace trv {

/// Looks through a document's characters on their way to the parser, piece by piece.
///
/// Two things happen to them. What the parser cannot bear in a comment, a text, a CDATA section or
/// a processing instruction becomes a harmless character: those carry nothing for us, and their
/// length stays, so that lines and columns still fit. And the document is refused, before the
/// parser sees the offending place, where it nests too deeply (the parser recurses) or declares an
/// entity (which can grow without bound). Attributes pass untouched.
///
/// Wherever the document is well-formed so far, the count of open elements is exact; where it is
/// not, the parser has already given up.
class XmlScreen {
public:
    enum class Refusal { none, tooDeep, entityDeclaration };

    /// @param deepest  how many elements, or groups in a document type, may be open at once
    explicit XmlScreen(int deepest) : deepest_(deepest) {}

    /// Takes the next piece of the document and gives back what the parser may see of it, together
    /// with what was held back before. It may be empty. After a refusal it ends at the offending
    /// place, and no further piece may be given.
    QString pass(QString piece);

    /// What is still held back at the end of the document.
    QString rest() { return std::move(text_); }

    Refusal refusal() const { return refusal_; }

private:
    enum class Place {
        content,
        reference,
        markup,
        startTag,
        endTag,
        declaration,
        comment,
        cdata,
        instruction,
        documentType,
    };

    void see(ushort& character, int index);
    void seeContent(ushort& character, int index);
    void seeReference(ushort character, int index);
    void seeMarkup(ushort character);
    void seeStartTag(ushort character);
    void seeDeclaration(ushort character);
    void seeDocumentType(ushort character);
    bool seeOpening(ushort character);
    void seeUntilClosed(ushort& character, ushort closing, int repetitions);
    bool isQuoted(ushort character);
    void enter(Place place, Place afterwards);
    void open();
    void close();
    void disarmReference(int end);

    const int deepest_;
    int depth_ = 0;
    Refusal refusal_ = Refusal::none;

    Place place_ = Place::content;
    // Where a comment, a CDATA section or an instruction leads when it ends.
    Place afterwards_ = Place::content;
    // The quote that ends the literal at hand, 0 outside literals.
    ushort quote_ = 0;
    ushort previous_ = 0;
    // How many of the characters that close the place at hand have come in a row.
    int repetitions_ = 0;
    // The beginning of a "<!" construct, as far as it may still become one that matters.
    QString opening_;
    bool inSubset_ = false;
    bool inDeclaration_ = false;

    // The piece at hand, with what was held back before it: a reference is judged as a whole.
    QString text_;
    int referenceStart_ = 0;
};

}  // namespace trv
