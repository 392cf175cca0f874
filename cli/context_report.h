#pragma once

/// @file
/// What the commands print about a machine context.

#include <cli/input_files.h>

#include <QJsonObject>
#include <QString>

namespace trv::cli {

/// The fields, a line each, and the sections that are missing. The first line names the file,
/// unless the name is empty.
QString contextText(const QString& name, const ContextFile& context);

/// The same as JSON; docs/command.md lists the keys.
QJsonObject contextJson(const QString& name, const ContextFile& context);

/// A few words: "machine context "Setup A", machine MILL5, position POS1".
QString contextSummary(const ContextFile& context);

}  // namespace trv::cli
