#pragma once

/// @file
/// The contents of a message file, as a program gets them by loading it into a new store.

#include <cli/input_files.h>
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
    /// A file with the result `failed` has been reported. A device or a directory counts
    /// as missing.
    load_result result = load_result::missing;
    /// Why a file is missing; none for any other file.
    Problem whyMissing;
    std::vector<Section> sections;
};

/// Loads a file, a pipe or standard input into a store of its own. Devices are not opened: reading
/// them may never end.
///
/// @param name  a path of the system; no reference in it is expanded. "-" is standard input, the
///              faults of which are reported under displayName()
MessageFile loadMessageFile(const QString& name);

}  // namespace trv::cli
