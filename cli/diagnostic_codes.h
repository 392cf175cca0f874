#pragma once

/// @file
/// The words by which programs recognise what is wrong with a file. They stay the same in later
/// versions; docs/command.md lists them.
///
/// Threads: any.

#include <trvfiles/support/CFileFault.h>

#include <QJsonObject>
#include <QString>

namespace trv::cli {

/// The code of a note: "not-a-number".
QString codeOf(CFileFault::Note::Kind kind);

/// The code of a failure. A failure of the system has that of its number, as far as it is one of
/// the usual ones: "file-missing".
QString codeOf(CFileFault::Cause cause, int systemError);

/// The members of a failure beside its code and its place, as far as it has them.
QJsonObject fieldsOf(const CFileFault& fault);

/// The members of a note beside its code and its place, as far as it has them.
QJsonObject fieldsOf(const CFileFault::Note& note);

}  // namespace trv::cli
