#include <trvfiles/support/CFileFault.h>

namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

using Kind = CFileFault::Note::Kind;

}  // namespace

const char* fileNoteKindName(Kind kind) {
    switch (kind) {
        case Kind::leftOut:
            return "leftOut";
        case Kind::notANumber:
            return "notANumber";
        case Kind::notAFlag:
            return "notAFlag";
        case Kind::missingSection:
            return "missingSection";
        case Kind::notText:
            return "notText";
        case Kind::unknownName:
            return "unknownName";
        case Kind::repeated:
            return "repeated";
        case Kind::hiddenByFile:
            return "hiddenByFile";
        case Kind::missingRow:
            return "missingRow";
        case Kind::notAffine:
            return "notAffine";
        case Kind::notOrthonormal:
            return "notOrthonormal";
        case Kind::misplacedTags:
            return "misplacedTags";
    }
    return "";
}
