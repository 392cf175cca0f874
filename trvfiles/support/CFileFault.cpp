#include <trvfiles/support/CFileFault.h>

namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

using Kind = CFileFault::Note::Kind;
using Cause = CFileFault::Cause;

}  // namespace

const char* fileNoteKindName(Kind kind) {
    switch (kind) {
        case Kind::leftOut:
            return "left-out";
        case Kind::notANumber:
            return "not-a-number";
        case Kind::notAFlag:
            return "not-a-flag";
        case Kind::missingSection:
            return "section-missing";
        case Kind::notText:
            return "not-text";
        case Kind::unknownName:
            return "unknown-name";
        case Kind::repeated:
            return "element-repeated";
        case Kind::hiddenByFile:
            return "hidden-by-file";
        case Kind::missingRow:
            return "row-missing";
        case Kind::notAffine:
            return "not-affine";
        case Kind::notOrthonormal:
            return "not-orthonormal";
        case Kind::misplacedTags:
            return "tags-misplaced";
        case Kind::singular:
            return "singular";
        case Kind::repeatedAttribute:
            return "attribute-repeated";
        case Kind::ignoredText:
            return "text-ignored";
        case Kind::cutReference:
            return "reference-cut";
    }
    return "";
}

const char* fileFaultCauseName(Cause cause) {
    switch (cause) {
        case Cause::none:
            return "";
        case Cause::system:
            return "system-error";
        case Cause::fileName:
            return "not-a-file-name";
        case Cause::tooLong:
            return "too-long";
        case Cause::noStorage:
            return "no-storage";
        case Cause::notWellFormed:
            return "not-well-formed";
        case Cause::tooDeep:
            return "too-deep";
        case Cause::entityDeclared:
            return "entity-declared";
        case Cause::invalidCharacter:
            return "character-not-allowed";
        case Cause::unknownEncoding:
            return "encoding-unknown";
        case Cause::wrongRoot:
            return "root-element-wrong";
        case Cause::wrongVersion:
            return "version-not-an-integer";
        case Cause::missingElement:
            return "element-missing";
        case Cause::incompleteOrientation:
            return "orientation-incomplete";
        case Cause::notWritable:
            return "not-writable";
        case Cause::missingNumbers:
            return "numbers-missing";
        case Cause::missingKey:
            return "key-missing";
    }
    return "";
}
