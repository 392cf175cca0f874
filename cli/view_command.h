#pragma once

/// @file
/// The command "view".

#include <cli/command.h>
#include <cli/page_parts.h>

namespace trv::cli {

/// Writes the page of a call.
///
/// @param parts  without scripts, nothing is written: the command was built without three.js
ExitStatus viewFiles(const QCommandLineParser& call, const Console& console,
                     const PageParts& parts);

}  // namespace trv::cli
