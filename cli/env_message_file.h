#pragma once

/// @file
/// A message file by itself, as a program that loads it into a new store gets it.

#include <trvfiles/environment/message_loading.h>

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
    /// What is wrong with a file that failed has been reported.
    load_result result = load_result::missing;
    std::vector<Section> sections;
};

/// Loads a file into a store of its own.
///
/// @param name  where the system finds it; no reference in it is expanded
MessageFile loadMessageFile(const QString& name);

/// The system's words for a missing file.
QString missingText();

}  // namespace trv::cli
