#pragma once

/// @file
/// Which files a command replaces by an axis file.

#include <QCommandLineOption>
#include <QString>

namespace trv::cli {

/// What a file is, if it is not an axis file that can be read, as a human-readable clause: "it is
/// an assembly". Empty for an axis file and for a name that no file has.
QString whyNotAnAxisFile(const QString& name);

/// The option "--force", with which a command replaces any file.
QCommandLineOption forceOption();

}  // namespace trv::cli
