#pragma once

/// @file
/// The manual page trvfiles(1), made from the table of commands.

#include <cli/command.h>

#include <QList>
#include <QString>

namespace trv::cli {

/// A call that the section EXAMPLES explains. It works in the project directory of the sample.
struct ManualExample {
    QString call;
    QString explanation;
};

QList<ManualExample> manualExamples();

/// The page in roff, with the man macros. It has the version of the command and no date.
QString manualPage(const CommandGroup& commands);

}  // namespace trv::cli
