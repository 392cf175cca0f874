#pragma once

/// @file
/// The contents of a message file, as a program gets them that loads it into a new store.

#include <trvfiles/environment/message_file_internal.h>

#include <QString>

#include <string>
#include <vector>

namespace trv::cli {

struct Message {
    int number;
    /// Modulo 65536.
    int line;
    std::string text;
};

struct Section {
    std::string name;
    std::vector<Message> messages;
};

struct MessageFile {
    /// A file with the result `failed` has been reported. A file that is not a regular one counts
    /// as missing.
    load_result result = load_result::missing;
    /// The human-readable reason for which a file is missing; empty for any other file.
    QString whyMissing;
    std::vector<Section> sections;
};

/// Loads a regular file into a store of its own. Pipes and devices are not opened: they may never
/// begin or never end.
///
/// @param name  a path of the system; no reference in it is expanded
MessageFile loadMessageFile(const QString& name);

}  // namespace trv::cli
