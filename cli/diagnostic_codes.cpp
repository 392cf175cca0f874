#include <cli/diagnostic_codes.h>

#include <cerrno>
#include <string>

namespace trv::cli {
namespace {

using Kind = CFileFault::Note::Kind;
using Cause = CFileFault::Cause;

const char* wordOf(Kind kind) {
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

const char* wordOfSystem(int error) {
    switch (error) {
        case ENOENT:
            return "file-missing";
        case EACCES:
        case EPERM:
            return "permission-denied";
        case EISDIR:
            return "is-a-directory";
        default:
            return "system-error";
    }
}

const char* wordOf(Cause cause, int systemError) {
    switch (cause) {
        case Cause::none:
            break;
        case Cause::system:
            return wordOfSystem(systemError);
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

}  // namespace

QString codeOf(Kind kind) {
    return QString::fromLatin1(wordOf(kind));
}

QString codeOf(Cause cause, int systemError) {
    return QString::fromLatin1(wordOf(cause, systemError));
}

QJsonObject fieldsOf(const CFileFault& fault) {
    QJsonObject fields;
    if (!fault.subject.empty()) {
        fields.insert(QStringLiteral("subject"), QString::fromStdString(fault.subject));
    }
    if (fault.systemError != 0) fields.insert(QStringLiteral("systemError"), fault.systemError);
    return fields;
}

QJsonObject fieldsOf(const CFileFault::Note& note) {
    QJsonObject fields;
    const auto add = [&](const char* key, const std::string& value) {
        if (!value.empty()) fields.insert(QString::fromLatin1(key), QString::fromStdString(value));
    };
    add("subject", note.subject);
    add("parent", note.parent);
    add("attribute", note.attribute);
    add("expected", note.expected);
    const bool hasValue =
        !note.value.empty() || note.kind == Kind::notANumber || note.kind == Kind::notAFlag;
    if (hasValue) fields.insert(QStringLiteral("value"), QString::fromStdString(note.value));
    if (note.count > 0) fields.insert(QStringLiteral("count"), note.count);
    return fields;
}

}  // namespace trv::cli
