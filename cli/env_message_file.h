#pragma once

/// @file
/// A message file by itself, as a program that loads it into a new store gets it.

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
    /// What is wrong with a file that failed has been reported. One that is not a regular file
    /// counts as missing.
    load_result result = load_result::missing;
    /// Why a file is missing, for a person; empty for any other one.
    QString whyMissing;
    std::vector<Section> sections;
};

/// Loads a regular file into a store of its own. A pipe or a device might never end, or never
/// begin, so neither is opened.
///
/// @param name  where the system finds it; no reference in it is expanded
MessageFile loadMessageFile(const QString& name);

}  // namespace trv::cli
