#pragma once

/// @file
/// The saves that replace a whole file, and the two texts that each writes alternately.

#include <tests/assembly/sample_components.h>
#include <tests/cli/answer.h>
#include <tests/environment/store_access.h>
#include <tests/machine_context/context_samples.h>
#include <trvfiles/environment/store_writer.h>
#include <trvfiles/facade/CQvFilesIO.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <ostream>
#include <string>

namespace trv::testing {

struct Save {
    const char* name;
    /// Saves one of two contents under a name.
    std::function<int(const std::filesystem::path& target, bool second)> run;
    int success;
};

inline void PrintTo(const Save& save, std::ostream* stream) {
    *stream << save.name;
}

inline std::string nameOfSave(const ::testing::TestParamInfo<Save>& info) {
    return info.param.name;
}

inline int saveContext(const std::filesystem::path& target, bool second) {
    return writeContext(target, second ? allFields() : CMachineContextData());
}

inline int saveStore(int (*save)(message_store* store, const char* file_name),
                     const std::filesystem::path& target, bool second) {
    const Store store;
    add_section(store, "var");
    // The second text is longer than one buffer of the standard streams.
    const int entries = second ? 1000 : 10;
    for (int entry = 0; entry < entries; ++entry)
        set_variable(store, 0, ("Name" + std::to_string(entry) + " = a value").c_str());
    return save(store, target.string().c_str());
}

inline int saveParameters(const std::filesystem::path& target, bool second) {
    return saveStore(store_parameters, target, second);
}

inline int saveMessages(const std::filesystem::path& target, bool second) {
    return saveStore(store_messages, target, second);
}

/// A command that writes an axis file.
inline int commandAxis(const std::filesystem::path& target, bool second) {
    return answerTo(words("axis write --force --translate") +
                    QStringList({QLatin1String(second ? "1,2,3" : "0,0,0"),
                                 QString::fromStdString(target.string())}))
        .status;
}

/// A command that edits an assembly. If there is none, it is created first.
inline int commandEdit(const std::filesystem::path& target, bool second) {
    if (!std::filesystem::exists(target)) {
        CQvFilesIO::sWriteTrvAssembly(target.wstring(), assemblyOf(leaf("S", "f")));
    }
    return answerTo(words("assembly edit --set") +
                    QStringList({QLatin1String(second ? "S.comment=second" : "S.comment=first"),
                                 QString::fromStdString(target.string())}))
        .status;
}

inline const auto allSaves = ::testing::Values(
    Save{"AMachineContext", saveContext, eFileIOSuccess}, Save{"Parameters", saveParameters, 0},
    Save{"Messages", saveMessages, 0}, Save{"AnAxisOfTheCommand", commandAxis, cli::done},
    Save{"AnEditedAssembly", commandEdit, cli::done});

}  // namespace trv::testing
