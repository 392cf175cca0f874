#include <cli/diagnostic_codes.h>

#include <cerrno>
#include <string>

namespace trv::cli {
namespace {

using Kind = CFileFault::Note::Kind;
using Cause = CFileFault::Cause;

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

}  // namespace

QString codeOf(Kind kind) {
    return QLatin1String(fileNoteKindName(kind));
}

QString codeOf(Cause cause, int systemError) {
    const bool isSystem = cause == Cause::system;
    return QLatin1String(isSystem ? wordOfSystem(systemError) : fileFaultCauseName(cause));
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
