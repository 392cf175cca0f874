// What begins with "<!": comments, CDATA sections, and document types with their declarations.

#include <trvfiles/assembly/xml_screen.h>

namespace trv {
namespace {

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
        refuse(Refusal::entityDeclaration, index_);
    } else if (mayBecome(opening_, commentStart) || mayBecome(opening_, entityStart)) {
        inDeclaration_ = true;
        return true;
    }
    const bool complete = place_ != Place::documentType || refusal_ != Refusal::none;
    opening_.clear();
    return complete;
}

}  // namespace trv
